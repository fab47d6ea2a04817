#include "platform/ImageView.h"

#include "platform/ImageLoader.h"

#include <QPainter>

namespace platform {

ImageView::ImageView(QWidget *parent)
    : QWidget(parent)
{
}

void ImageView::setImage(const QImage &image)
{
    m_url.clear();
    display(image);
}

void ImageView::setImageWithURL(const QUrl &url, const QImage &placeholder)
{
    ImageLoader *loader = ImageLoader::instance();
    m_url = ImageLoader::normalized(url);
    if (const QImage cached = loader->cachedImage(m_url); !cached.isNull()) {
        display(cached);
        return;
    }
    display(placeholder);
    loader->load(m_url, this, [this, requested = m_url](const QImage &image) {
        // The view may have moved on to another URL (or image) while this one loaded.
        if (requested == m_url && !image.isNull())
            display(image);
    });
}

void ImageView::setContentMode(ContentMode mode)
{
    m_contentMode = mode;
    update();
}

QSize ImageView::sizeHint() const
{
    return m_image.isNull() ? QSize(0, 0) : m_image.deviceIndependentSize().toSize();
}

void ImageView::paintEvent(QPaintEvent *)
{
    if (m_image.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    QRectF source = m_image.rect();
    if (m_contentMode == ContentMode::ScaleAspectFill && !rect().isEmpty()) {
        const QSizeF covered = QSizeF(size()).scaled(source.size(), Qt::KeepAspectRatio);
        source = QRectF(source.center() - QPointF(covered.width(), covered.height()) / 2, covered);
    }
    painter.drawImage(QRectF(rect()), m_image, source);
}

void ImageView::display(const QImage &image)
{
    m_image = image;
    updateGeometry();
    update();
    Q_EMIT imageChanged();
}

} // namespace platform
