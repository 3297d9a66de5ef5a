#include "NamedImage.h"

#include "Bundle.h"

#include <QImageReader>
#include <QPaintDevice>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace velmora {

NamedImage::NamedImage(const QString& name) : name_(name) {
    for (const char* const suffix : {"", "@2x", "@3x"}) {
        const QString path = Bundle::pathForResource("images/" + name + suffix, "png");
        const QSize size = QImageReader(path).size();
        if (size.isEmpty()) {
            break;
        }
        if (variants_.empty()) {
            size_ = size;
        }
        variants_.push_back({path, {}});
    }
}

NamedImage::NamedImage(const QImage& picture) : size_(picture.size()) {
    if (!picture.isNull()) {
        variants_.push_back({{}, picture});
    }
}

void NamedImage::draw(QPainter& painter, const QRect& target) const {
    if (isNull() || target.isEmpty()) {
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const double enlarged = static_cast<double>(target.height()) / size().height();
    painter.drawImage(target, variantFor(enlarged * painter.device()->devicePixelRatioF()));
}

const QImage& NamedImage::variantFor(double ratio) const {
    const auto wanted = static_cast<std::size_t>(std::max(1.0, std::ceil(ratio)));
    const Variant& variant = variants_[std::min(wanted, variants_.size()) - 1];
    if (variant.picture.isNull()) {
        // Painted in the format that painters scale fastest.
        variant.picture = QImage(variant.path).convertToFormat(QImage::Format_ARGB32_Premultiplied);
        // The painter is told where to draw; a ratio of the image's own would only be in the way.
        variant.picture.setDevicePixelRatio(1);
    }
    return variant.picture;
}

} // namespace velmora
