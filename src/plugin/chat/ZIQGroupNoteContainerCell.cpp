#include "plugin/chat/ZIQGroupNoteContainerCell.h"

#include "kit/chat/ZIQBubbleView.h"
#include "plugin/service/ZIQGroupNoteColors.h"
#include "plugin/chat/ZIQGroupNotePreviewViewController.h"
#include "plugin/model/ZIQGroupNoteInfo.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"
#include "plugin/provider/ZIQGroupNoteDataProvider.h"

ZIQGroupNoteContainerCell::ZIQGroupNoteContainerCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQBubbleMessageCell(reuseIdentifier, parent)
    , m_vc(new ZIQGroupNotePreviewViewController(this))
{
    m_customView = m_vc->view();
    m_customView->setParent(container());
    m_customView->lower();
    m_customView->show();
}

ZIQGroupNoteContainerCell::~ZIQGroupNoteContainerCell() = default;

QSizeF ZIQGroupNoteContainerCell::getContentSize(ZIQMessageCellData *cellData)
{
    auto *data = qobject_cast<ZIQGroupNoteContainerCellData *>(cellData);
    if (!data)
        return {};
    data->setBusinessID(ZIQGroupNoteContainerCellData::parseBusinessID(data->innerMessage()));
    const ZIQGroupNoteInfoPtr info = ZIQGroupNoteInfo::initWithMessage(data->innerMessage());
    const qint64 rows = data->isExpandAll() ? data->allItemsCount() : (info ? info->showLineNum() : 0);
    data->setCustomViewSize(ZIQGroupNoteDataProvider::calcSizeOfInfo(info, rows));
    return data->customViewSize();
}

void ZIQGroupNoteContainerCell::fillWithData(const ZIQMessageCellDataPtr &data)
{
    ZIQBubbleMessageCell::fillWithData(data);
    m_customData = std::dynamic_pointer_cast<ZIQGroupNoteContainerCellData>(data);
    if (m_customData && m_customData->businessID() == ZIQGroupNoteMessageBody::noteBusinessID) {
        if (platform::ViewController *owner = mm_viewController()) {
            owner->addChildViewController(m_vc);
            m_vc->didMoveToParentViewController(owner);
        }
        m_vc->refreshWithMessage(m_customData->innerMessage(), this);
    }
    // A reused cell starts from the plain bubble; the reactions of this message decide again.
    bubbleView()->show();
    m_vc->setDisCorner(false);
    reConfigTagView();
    layoutMessage();
}

void ZIQGroupNoteContainerCell::layoutMessage()
{
    ZIQBubbleMessageCell::layoutMessage();
    if (!m_customData || !m_customView)
        return;
    // The kit sized the container to the measured card plus the strip's room; the card takes
    // the measured part from the top, whatever its parts show until its fetch has answered.
    m_vc->layoutViews();
    m_customView->setGeometry(QRectF(QPointF(0, 0), m_customData->customViewSize()).toAlignedRect());
}

void ZIQGroupNoteContainerCell::reConfigTagView()
{
    const QVariant extValue = ziq_extValueObj(container());
    if (extValue.typeId() != QMetaType::QVariantMap)
        return;
    auto *strip = extValue.toMap().value(reactPreviewKey).value<QWidget *>();
    if (!strip || !strip->parentWidget())
        return;
    ZIQGroupNoteColors::fillBackground(strip, ZIQGroupNoteColors::body());
    bubbleView()->hide();
    m_vc->setDisCorner(true);
}
