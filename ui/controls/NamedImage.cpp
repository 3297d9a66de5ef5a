#include "NamedImage.h"

#include "Bundle.h"

#include <QPaintDevice>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace velmora {

NamedImage::NamedImage(const QString& name) : name_(name) {
    for (const char* const suffix : {"", "@2x", "@3x"}) {
        const QImage variant(Bundle::pathForResource("images/" + name + suffix, "png"));
        if (variant.isNull())
            break;
        variants_.push_back(variant);
        // The painter is told where to draw; a ratio of the image's own would only be in the way.
        variants_.back().setDevicePixelRatio(1);
    }
}

NamedImage::NamedImage(const QImage& picture) {
    if (!picture.isNull())
        variants_.push_back(picture);
}

QSize NamedImage::size() const {
    return isNull() ? QSize(0, 0) : variants_.front().size();
}

void NamedImage::draw(QPainter& painter, const QRect& target) const {
    if (isNull() || target.isEmpty())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const double enlarged = static_cast<double>(target.height()) / size().height();
    painter.drawImage(target, variantFor(enlarged * painter.device()->devicePixelRatioF()));
}

const QImage& NamedImage::variantFor(double ratio) const {
    const auto wanted = static_cast<std::size_t>(std::max(1.0, std::ceil(ratio)));
    return variants_[std::min(wanted, variants_.size()) - 1];
}

} // namespace velmora
