#pragma once

#include <QImage>
#include <QRect>
#include <QSize>
#include <QString>

#include <vector>

class QPainter;

namespace velmora {

/// An image of the application's resources, in all the sharpnesses that there are of it. Each is
/// read when it is first drawn, and then kept. `resources/images/export` makes them from drawings.
class NamedImage {
public:
    /// No image: has no name and no size and draws nothing.
    NamedImage() = default;
    /// The image "images/`name`.png" and its variants "@2x" and "@3x"; none if it cannot be read.
    explicit NamedImage(const QString& name);
    /// A picture from elsewhere, without a name.
    explicit NamedImage(const QImage& picture);

    bool isNull() const { return variants_.empty(); }
    const QString& name() const { return name_; }
    /// Of the plain variant, in pixels.
    QSize size() const { return size_; }
    /// Fills `target`, in the painter's coordinates, with the variant that suits its height on the
    /// painter's device.
    void draw(QPainter& painter, const QRect& target) const;

private:
    const QImage& variantFor(double ratio) const;

    struct Variant {
        QString path;
        mutable QImage picture; ///< null until it has been read
    };
    QString name_;
    QSize size_{0, 0};
    std::vector<Variant> variants_; ///< plain, twice, three times the size
};

} // namespace velmora
