#include "DemoChatPlaceholder.h"

#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/SystemFont.h"

#include <QLabel>
#include <QVBoxLayout>

DemoChatPlaceholder::DemoChatPlaceholder(const ZIQChatConversation &conversation, const QString &name,
                                         QObject *parent)
    : ViewController(parent)
    , m_conversation(conversation)
{
    setTitle(name);
    setExtendsUnderNavigationBar(false);
}

QWidget *DemoChatPlaceholder::loadView()
{
    QWidget *view = ViewController::loadView();
    auto *label = new QLabel(view);
    label->setObjectName(QStringLiteral("chatPlaceholderLabel"));
    label->setText(title());
    label->setFont(platform::SystemFont::regular(15));
    label->setAlignment(Qt::AlignCenter);
    auto *layout = new QVBoxLayout(view);
    layout->addWidget(label);
    ZIQTheme::bind(label, [label] {
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, ZIQTheme::d_systemGrayColor());
        label->setPalette(palette);
    });
    return view;
}
