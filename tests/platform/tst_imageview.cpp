// Image views filled from URLs: a real HTTP server on the loopback interface, data:, file: and
// resource URLs, broken ones, the process-wide cache and answers that come too late.
#include "platform/ImageLoader.h"
#include "platform/ImageView.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <memory>

using platform::ImageLoader;
using platform::ImageView;

namespace {

QImage filled(const QColor &color)
{
    QImage image(4, 4, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

QByteArray png(const QColor &color)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    filled(color).save(&buffer, "PNG");
    return buffer.data();
}

QColor colorOf(const QImage &image)
{
    return image.isNull() ? QColor() : image.pixelColor(0, 0);
}

// Answers GET /green.png with a green PNG and anything else with 404. Requests for
// /held.png are kept waiting until release() is called.
class ImageServer : public QObject
{
public:
    ImageServer()
    {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection())
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
        });
        QVERIFY(m_server.listen(QHostAddress::LocalHost, 0));
    }

    QUrl url(const QString &path) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(path));
    }

    void release()
    {
        for (QTcpSocket *socket : std::exchange(m_held, {}))
            answer(socket, png(Qt::red));
    }

    int requests = 0;

private:
    void read(QTcpSocket *socket)
    {
        QByteArray &request = m_requests[socket];
        if (!(request += socket->readAll()).contains("\r\n\r\n"))
            return;
        ++requests;
        const QByteArray path = request.split(' ').value(1);
        if (path == "/held.png")
            m_held.append(socket);
        else
            answer(socket, path == "/green.png" ? png(Qt::green) : QByteArray());
    }

    static void answer(QTcpSocket *socket, const QByteArray &body)
    {
        socket->write("HTTP/1.1 " + QByteArray(body.isEmpty() ? "404 Not Found" : "200 OK")
            + "\r\nConnection: close\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
    QHash<QTcpSocket *, QByteArray> m_requests;
    QList<QTcpSocket *> m_held;
};

// Waits until everything asked of the loader for `url` so far has been answered.
void settle(const QUrl &url)
{
    bool answered = false;
    QObject context;
    ImageLoader::instance()->load(url, &context, [&](const QImage &) { answered = true; });
    QTRY_VERIFY(answered);
}

} // namespace

class ImageViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { ImageLoader::instance()->clearCache(); }

    // Two views asking at once share one request; a third view later is served by the cache.
    void placeholderUntilTheImageArrivesThenFromTheCache()
    {
        ImageServer server;
        const QUrl url = server.url(QStringLiteral("/green.png"));
        ImageView first;
        ImageView second;
        first.setImageWithURL(url, filled(Qt::gray));
        second.setImageWithURL(url, filled(Qt::gray));
        QCOMPARE(colorOf(first.image()), QColor(Qt::gray)); // nothing arrives inside the call
        QTRY_COMPARE(colorOf(second.image()), QColor(Qt::green));
        QCOMPARE(colorOf(first.image()), QColor(Qt::green));
        ImageView third;
        third.setImageWithURL(url, filled(Qt::gray));
        QCOMPARE(colorOf(third.image()), QColor(Qt::green));
        QCOMPARE(server.requests, 1);
    }

    void otherSourcesAndBrokenOnes_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<bool>("loads");
        QTest::newRow("data") << "data:image/png;base64," + QString::fromLatin1(png(Qt::blue).toBase64()) << true;
        QTest::newRow("http 404") << QStringLiteral("http 404") << false;
        QTest::newRow("connection refused") << QStringLiteral("http refused") << false;
        QTest::newRow("not an image") << QStringLiteral("data:text/plain,hello") << false;
        QTest::newRow("empty") << QString() << false;
    }

    void otherSourcesAndBrokenOnes()
    {
        QFETCH(QString, source);
        QFETCH(bool, loads);
        auto server = std::make_unique<ImageServer>();
        if (source.startsWith(QLatin1String("http"))) {
            const bool refused = source.endsWith(QLatin1String("refused"));
            source = server->url(QStringLiteral("/missing.png")).toString();
            if (refused)
                server.reset(); // nobody listens on the port any more
        }
        ImageView view;
        view.setImageWithURL(QUrl(source), filled(Qt::gray));
        settle(QUrl(source));
        QCOMPARE(colorOf(view.image()) != QColor(Qt::gray), loads);
        QCOMPARE(view.imageURL(), ImageLoader::normalized(QUrl(source)));
    }

    // A reused view that moved on ignores the first URL's late answer; a view gone before its
    // answer is simply not called.
    void lateAnswersAreIgnored()
    {
        ImageServer server;
        const QUrl held = server.url(QStringLiteral("/held.png"));
        ImageView reused;
        auto *gone = new ImageView;
        reused.setImageWithURL(held, filled(Qt::gray));
        gone->setImageWithURL(held, filled(Qt::gray));
        QTRY_COMPARE(server.requests, 1);
        delete gone;
        reused.setImageWithURL(server.url(QStringLiteral("/green.png")));
        QTRY_COMPARE(colorOf(reused.image()), QColor(Qt::green));

        QSignalSpy changed(&reused, &ImageView::imageChanged);
        server.release();
        settle(held);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(colorOf(ImageLoader::instance()->cachedImage(held)), QColor(Qt::red));
    }
};

QTEST_MAIN(ImageViewTest)
#include "tst_imageview.moc"
