#include "platform/ImageLoader.h"

#include "platform/MainQueue.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace platform {

namespace {

// The cache counts kibibytes of decoded pixels: 64 MiB, a few hundred avatars and icons.
constexpr qsizetype CacheCostLimitKiB = 64 * 1024;

qsizetype costOf(const QImage &image)
{
    return qMax<qsizetype>(1, image.sizeInBytes() / 1024);
}

} // namespace

ImageLoader *ImageLoader::instance()
{
    static QPointer<ImageLoader> loader;
    if (!loader && QCoreApplication::instance())
        loader = new ImageLoader(QCoreApplication::instance());
    return loader;
}

ImageLoader::ImageLoader(QObject *parent)
    : QObject(parent)
    , m_network(new QNetworkAccessManager(this))
    , m_cache(CacheCostLimitKiB)
{
}

QUrl ImageLoader::normalized(const QUrl &url)
{
    if (!url.scheme().isEmpty())
        return url;
    // ":/x" does not parse as a URL; its text survives as the path.
    const QString path = url.path();
    if (path.startsWith(QLatin1String(":/")))
        return QUrl(QLatin1String("qrc") + path);
    if (path.startsWith(QLatin1Char('/')))
        return QUrl::fromLocalFile(path);
    return url;
}

QImage ImageLoader::cachedImage(const QUrl &url) const
{
    const QImage *image = m_cache.object(normalized(url).toString());
    return image ? *image : QImage();
}

void ImageLoader::load(const QUrl &url, QObject *context, Completion completion)
{
    const QUrl source = normalized(url);
    const QString key = source.toString();
    Waiter waiter { context, context != nullptr, std::move(completion) };
    if (const QImage cached = cachedImage(source); !cached.isNull() || source.scheme().isEmpty()) {
        // A cached image, or a URL that names nothing: answered at once, yet never re-entrantly.
        MainQueue::async(this, [waiter = std::move(waiter), cached] { waiter.answer(cached); });
        return;
    }
    QList<Waiter> &waiters = m_waiting[key];
    waiters.append(std::move(waiter));
    if (waiters.size() > 1)
        return; // already on its way
    QNetworkReply *reply = m_network->get(QNetworkRequest(source));
    connect(reply, &QNetworkReply::finished, this, [this, reply, key] { finished(reply, key); });
}

void ImageLoader::finished(QNetworkReply *reply, const QString &key)
{
    reply->deleteLater();
    QImage image;
    if (reply->error() == QNetworkReply::NoError)
        image.loadFromData(reply->readAll());
    if (!image.isNull())
        m_cache.insert(key, new QImage(image), costOf(image));
    const QList<Waiter> waiters = m_waiting.take(key);
    for (const Waiter &waiter : waiters)
        waiter.answer(image);
}

void ImageLoader::clearCache()
{
    m_cache.clear();
}

} // namespace platform
