// An image view that can fill itself from a URL: it shows a placeholder until the image has
// arrived (and keeps it when the URL is broken), and ignores an answer for a URL it no
// longer shows, so a reused view never flashes a stale picture.
#pragma once

#include <QImage>
#include <QUrl>
#include <QWidget>

namespace platform {

class ImageView : public QWidget
{
    Q_OBJECT

public:
    enum class ContentMode {
        ScaleToFill, ///< stretched to the view's bounds
        ScaleAspectFill, ///< scaled to cover the bounds, cropped at the centre
    };

    explicit ImageView(QWidget *parent = nullptr);

    QImage image() const { return m_image; }
    /// Shows `image` and forgets any URL being loaded.
    void setImage(const QImage &image);

    /// Shows `placeholder`, or the image at once when the process-wide cache holds it, then
    /// the image of `url` when it arrives.
    void setImageWithURL(const QUrl &url, const QImage &placeholder = {});
    /// The URL last given to setImageWithURL(), empty after setImage().
    QUrl imageURL() const { return m_url; }

    ContentMode contentMode() const { return m_contentMode; }
    void setContentMode(ContentMode mode);

    QSize sizeHint() const override;

Q_SIGNALS:
    void imageChanged();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void display(const QImage &image);

    QImage m_image;
    QUrl m_url;
    ContentMode m_contentMode = ContentMode::ScaleToFill;
};

} // namespace platform
