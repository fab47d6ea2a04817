// The small bar of emojis shown above a message that was long-pressed: choosing one reacts to
// the message with it; a tap elsewhere on the screen puts the bar away.
#pragma once

#include <QStringList>
#include <QWidget>

class ZIQReactionMenu : public QWidget
{
    Q_OBJECT

public:
    static inline const QStringList emojis
        = { QStringLiteral("👍"), QStringLiteral("❤️"), QStringLiteral("😂"), QStringLiteral("😮"),
              QStringLiteral("😢"), QStringLiteral("🙏") };
    static constexpr int ButtonSize = 40;

    explicit ZIQReactionMenu(QWidget *parent = nullptr);

    QString msgID() const { return m_msgID; }
    /// Shows the bar for `msgID` above `anchor` (in the parent's coordinates), below it when
    /// there is no room above.
    void showFor(const QString &msgID, const QRect &anchor);

Q_SIGNALS:
    void chosen(const QString &msgID, const QString &emoji);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_msgID;
};
