// The chat's input bar: a "more" button, the text field and a send button, with the "more"
// panel opening under them where the keyboard would stand. Return or the send button hands the
// typed text to the chat; the chat fills the panel each time it opens.
#pragma once

#include <QWidget>

class QToolButton;
class QPushButton;
class ZIQChatMorePanel;

namespace platform {
class TextField;
}

class ZIQChatInputController : public QWidget
{
    Q_OBJECT

public:
    static constexpr int BarHeight = 52;

    explicit ZIQChatInputController(QWidget *parent = nullptr);

    /// Clears the text and puts the "more" panel and the keyboard away.
    void reset();

    bool isMorePanelVisible() const;
    void setMorePanelVisible(bool visible);
    /// The bar's height with the panel when it is open.
    int preferredHeight() const;

    platform::TextField *textField() const { return m_textField; }
    QToolButton *moreButton() const { return m_moreButton; }
    QPushButton *sendButton() const { return m_sendButton; }
    ZIQChatMorePanel *morePanel() const { return m_morePanel; }

Q_SIGNALS:
    /// Text to send; the field is cleared already.
    void sendRequested(const QString &text);
    /// The "more" panel is about to open and wants its items.
    void morePanelAboutToShow();
    /// The bar's height changed (the panel opened or closed).
    void preferredHeightChanged();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void send();
    void toggleMorePanel();
    void layoutBar();
    void applyTheme();

    QToolButton *m_moreButton;
    platform::TextField *m_textField;
    QPushButton *m_sendButton;
    ZIQChatMorePanel *m_morePanel;
};
