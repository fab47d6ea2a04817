// The note's editor screen, reduced to naming the note it was opened over.
#include "plugin/editor/ZIQGroupNoteViewController.h"

#include "kit/common/ZIQGlobalization.h"

#include <QLabel>
#include <QVBoxLayout>

ZIQGroupNoteViewController::ZIQGroupNoteViewController(
    const QString &groupID, const V2VORMessagePtr &message, bool isCreateNew, QObject *parent)
    : platform::ViewController(parent)
    , m_groupID(groupID)
    , m_isCreateNew(isCreateNew)
    , m_dataProvider(new ZIQGroupNoteDataProvider(message, this))
{
}

void ZIQGroupNoteViewController::viewDidLoad()
{
    setTitle(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQKitMoreGroupNote")));
    auto *label = new QLabel(m_dataProvider->info()->title(), view());
    label->setObjectName(QStringLiteral("editorNoteTitle"));
    label->setAlignment(Qt::AlignCenter);
    auto *layout = new QVBoxLayout(view());
    layout->addWidget(label);
}
