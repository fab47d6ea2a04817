// Images fetched by URL for the screens (avatars and the like), without ever blocking the
// event loop: http and https through the network, file: and local paths, data: URLs and Qt
// resources (":/..." or qrc:). Decoded images stay in one memory cache for the whole
// process, so a second view of the same URL shows it at once, and a URL already on its way
// is fetched once however many views ask for it.
#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <functional>

class QNetworkAccessManager;
class QNetworkReply;

namespace platform {

class ImageLoader : public QObject
{
    Q_OBJECT

public:
    using Completion = std::function<void(const QImage &image)>;

    static ImageLoader *instance();

    /// `url` as the loader keys it: ":/x" becomes qrc:/x, an absolute path a file: URL.
    static QUrl normalized(const QUrl &url);

    /// The decoded image of `url` when the memory cache holds it, else a null image.
    QImage cachedImage(const QUrl &url) const;

    /// Fetches and decodes `url`, then calls `completion` on a later turn of the event loop
    /// (never inside this call) with the image, or a null image when the URL cannot be read
    /// or is no image. Nothing is called once `context` is destroyed.
    void load(const QUrl &url, QObject *context, Completion completion);

    /// Empties the memory cache (tests, and a warning of low memory).
    void clearCache();

private:
    explicit ImageLoader(QObject *parent);

    struct Waiter
    {
        QPointer<QObject> context;
        bool hasContext;
        Completion completion;

        void answer(const QImage &image) const
        {
            if (!hasContext || context)
                completion(image);
        }
    };

    void finished(QNetworkReply *reply, const QString &key);

    QNetworkAccessManager *m_network;
    QCache<QString, QImage> m_cache;
    QHash<QString, QList<Waiter>> m_waiting;
};

} // namespace platform
