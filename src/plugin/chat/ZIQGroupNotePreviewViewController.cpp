#include "plugin/chat/ZIQGroupNotePreviewViewController.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQRTL.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/CornerMask.h"
#include "platform/NavigationController.h"
#include "platform/SystemFont.h"
#include "platform/TableView.h"
#include "platform/TextMeasure.h"
#include "plugin/service/ZIQGroupNoteColors.h"
#include "plugin/chat/ZIQGroupNoteContainerCell.h"
#include "plugin/chat/ZIQGroupNotePreviewCell.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"
#include "plugin/provider/ZIQGroupNoteDataProvider.h"
#include "plugin/service/ZIQGroupNoteBundle.h"

#include <QLabel>
#include <QPushButton>
#include <cmath>

namespace {

constexpr int CollapsedRows = 2;
constexpr int HeaderFontSize = 14;
constexpr int SmallFontSize = 12;
constexpr int HeaderMargin = 12;
constexpr int IconSize = 16;
constexpr int IconSpacing = 11;
constexpr int LineSpacing = 5;
constexpr int InfoHeight = 21;

QString localized(const char *key)
{
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(key));
}

QLabel *makeLabel(QWidget *parent, const char *name, const QFont &font)
{
    auto *label = new QLabel(parent);
    label->setObjectName(QString::fromLatin1(name));
    label->setFont(font);
    return label;
}

} // namespace

ZIQGroupNotePreviewViewController::ZIQGroupNotePreviewViewController(QObject *parent)
    : platform::ViewController(parent)
{
}

ZIQGroupNotePreviewViewController::ZIQGroupNotePreviewViewController(const V2VORMessagePtr &message, QObject *parent)
    : platform::ViewController(parent)
    , m_message(message)
{
    setDataProvider(new ZIQGroupNoteDataProvider(message));
    refreshWithNewestInfo();
}

ZIQGroupNotePreviewViewController::~ZIQGroupNotePreviewViewController() = default;

ZIQGroupNoteContainerCell *ZIQGroupNotePreviewViewController::cell() const
{
    return m_cell;
}

void ZIQGroupNotePreviewViewController::setCell(ZIQGroupNoteContainerCell *cell)
{
    m_cell = cell;
}

ZIQGroupNoteDataProvider *ZIQGroupNotePreviewViewController::dataProvider()
{
    if (!m_dataProvider)
        setDataProvider(new ZIQGroupNoteDataProvider());
    return m_dataProvider;
}

void ZIQGroupNotePreviewViewController::setDataProvider(ZIQGroupNoteDataProvider *provider)
{
    if (provider == m_dataProvider)
        return;
    if (m_dataProvider) {
        // The old provider may be the caller right now (its delegate call led here): it goes
        // quiet at once and away on a later turn.
        m_dataProvider->setDelegate(nullptr);
        m_dataProvider->deleteLater();
    }
    m_dataProvider = provider;
    if (provider) {
        provider->setParent(this);
        provider->setDelegate(this);
    }
}

template<typename Action> auto ZIQGroupNotePreviewViewController::whileCurrent(Action action)
{
    QPointer<ZIQGroupNotePreviewViewController> self(this);
    QPointer<ZIQGroupNoteDataProvider> provider(m_dataProvider);
    return [self, provider, action](auto &&...args) {
        if (self && provider && self->m_dataProvider == provider)
            action(*self, args...);
    };
}

void ZIQGroupNotePreviewViewController::setDisCorner(bool disCorner)
{
    m_disCorner = disCorner;
    if (isViewLoaded())
        applyCorners();
}

QWidget *ZIQGroupNotePreviewViewController::headerView()
{
    view();
    return m_headerView;
}

QLabel *ZIQGroupNotePreviewViewController::iconView()
{
    view();
    return m_iconView;
}

QLabel *ZIQGroupNotePreviewViewController::noteLabel()
{
    view();
    return m_noteLabel;
}

QLabel *ZIQGroupNotePreviewViewController::titleLabel()
{
    view();
    return m_titleLabel;
}

QLabel *ZIQGroupNotePreviewViewController::infoLabel()
{
    view();
    return m_infoLabel;
}

platform::TableView *ZIQGroupNotePreviewViewController::itemsTableView()
{
    view();
    return m_itemsTableView;
}

QPushButton *ZIQGroupNotePreviewViewController::joinButton()
{
    view();
    return m_joinButton;
}

QWidget *ZIQGroupNotePreviewViewController::loadView()
{
    m_root = new QWidget;
    m_root->setObjectName(QStringLiteral("groupNoteCard"));
    buildHeader(m_root);

    m_itemsTableView = new platform::TableView(m_root);
    m_itemsTableView->setObjectName(QStringLiteral("itemsTableView"));
    m_itemsTableView->setGeometry(m_root->rect());
    m_itemsTableView->setSeparatorStyle(platform::TableView::SeparatorStyle::None);
    m_itemsTableView->setScrollEnabled(false);
    m_itemsTableView->setTableFooterView(new QWidget);
    m_itemsTableView->setRowHeight(ZIQGroupNotePreviewCell::RowHeight);
    m_itemsTableView->registerCell<ZIQGroupNotePreviewCell>(previewCellIdentifier);
    m_itemsTableView->setDataSource(this);
    m_itemsTableView->setDelegate(this);

    m_joinButton = new QPushButton(m_root);
    m_joinButton->setObjectName(QStringLiteral("joinButton"));
    m_joinButton->setFont(platform::SystemFont::regular(SmallFontSize));
    m_joinButton->setText(localized("ZIQGroupNoteNow"));
    m_joinButton->setCursor(Qt::PointingHandCursor);
    connect(m_joinButton, &QPushButton::clicked, this, &ZIQGroupNotePreviewViewController::onJoinButtonClicked);

    ZIQTheme::bind(m_root, [this] { applyTheme(); });
    return m_root;
}

void ZIQGroupNotePreviewViewController::buildHeader(QWidget *root)
{
    m_headerView = new QWidget(root);
    m_headerView->setObjectName(QStringLiteral("headerView"));
    m_iconView = new QLabel(m_headerView);
    m_iconView->setObjectName(QStringLiteral("iconView"));
    m_iconView->setAccessibleName(localized("ZIQGroupNoteMessageTitle"));
    m_iconView->setScaledContents(true);
    const QFont bold = platform::SystemFont::bold(HeaderFontSize);
    m_noteLabel = makeLabel(m_headerView, "noteLabel", bold);
    m_noteLabel->setWordWrap(true);
    m_noteLabel->setText(localized("ZIQGroupNoteMessageTitle"));
    m_titleLabel = makeLabel(m_headerView, "titleLabel", bold);
    m_titleLabel->setWordWrap(true);
    m_infoLabel = makeLabel(m_headerView, "infoLabel", platform::SystemFont::regular(SmallFontSize));
}

void ZIQGroupNotePreviewViewController::viewDidLayoutSubviews()
{
    applyCorners();
}

void ZIQGroupNotePreviewViewController::refreshWithMessage(
    const V2VORMessagePtr &message, ZIQGroupNoteContainerCell *cell)
{
    m_cell = cell;
    m_message = message;
    setDataProvider(new ZIQGroupNoteDataProvider(message));
    if (!m_dataProvider->isExpandAll() && hostData())
        m_dataProvider->setIsExpandAll(hostData()->isExpandAll());
    refreshWithNewestInfo();
}

void ZIQGroupNotePreviewViewController::refreshWithNewestInfo()
{
    dataProvider()->getNoteStatistics(
        whileCurrent([](ZIQGroupNotePreviewViewController &card, int code, const QString &, const ZIQGroupNoteInfoPtr &) {
            if (code != 0)
                return;
            card.updateInfoLabel();
            // Sized first, so the table loads the rows it is about to show.
            card.layoutViews();
            card.itemsTableView()->reloadData();
        }));
    dataProvider()->refreshCreatorInfoWithCompletion(
        whileCurrent([](ZIQGroupNotePreviewViewController &card, int code, const QString &) {
            if (code == 0)
                card.updateInfoLabel();
        }));
}

ZIQGroupNoteContainerCellData *ZIQGroupNotePreviewViewController::hostData() const
{
    return m_cell ? m_cell->customData().get() : nullptr;
}

bool ZIQGroupNotePreviewViewController::isExpanded() const
{
    // A card outside any cell keeps its state in its provider alone.
    if (const ZIQGroupNoteContainerCellData *data = hostData())
        return data->isExpandAll();
    return !m_cell && m_dataProvider && m_dataProvider->isExpandAll();
}

void ZIQGroupNotePreviewViewController::layoutViews()
{
    view();
    const ZIQGroupNoteInfoPtr info = dataProvider()->info();
    const qint64 rows = isExpanded() ? m_dataProvider->previewDataList().size() : info->showLineNum();
    const QSizeF card = ZIQGroupNoteDataProvider::calcSizeOfInfo(info, rows);
    m_root->setGeometry(QRectF(QPointF(0, 0), card).toAlignedRect());
    layoutHeaderView(ZIQGroupNoteDataProvider::calcHeaderViewSize(info));
    const int tableTop = m_headerView->geometry().bottom() + 1;
    const int tableHeight = int(ZIQGroupNoteDataProvider::calcTableViewHeight(rows));
    m_itemsTableView->setGeometry(0, tableTop, m_root->width(), tableHeight);
    const int buttonLeft = qRound((m_root->width() - JoinButtonWidth) / 2.0);
    m_joinButton->setGeometry(
        buttonLeft, tableTop + tableHeight + JoinButtonTop, JoinButtonWidth, JoinButtonHeight);
    applyCorners();
}

void ZIQGroupNotePreviewViewController::layoutHeaderView(const QSizeF &headerSize)
{
    const ZIQGroupNoteInfoPtr info = dataProvider()->info();
    m_headerView->setGeometry(QRectF(QPointF(0, 0), headerSize).toAlignedRect());
    m_iconView->setGeometry(HeaderMargin, HeaderMargin, IconSize, IconSize);

    const int textLeft = HeaderMargin + IconSize + IconSpacing;
    const int textWidth = std::max(0, m_headerView->width() - HeaderMargin - textLeft);
    const QSizeF note = platform::TextMeasure::size(
        m_noteLabel->text(), m_noteLabel->font(), QSizeF(textWidth, platform::TextMeasure::Unbounded));
    const int noteHeight = int(std::ceil(note.height()));
    const int iconCentre = HeaderMargin + IconSize / 2;
    m_noteLabel->setGeometry(textLeft, iconCentre - noteHeight / 2, textWidth, noteHeight);

    const QSizeF title = ZIQGroupNoteDataProvider::calcTitleSize(info);
    m_titleLabel->setText(info->title());
    m_titleLabel->setGeometry(textLeft, m_noteLabel->geometry().bottom() + 1 + LineSpacing,
        int(std::ceil(title.width())), int(std::ceil(title.height())));
    m_infoLabel->setGeometry(textLeft, m_titleLabel->geometry().top() + m_titleLabel->height() + LineSpacing,
        textWidth, InfoHeight);
    updateInfoLabel();
}

void ZIQGroupNotePreviewViewController::updateInfoLabel()
{
    const ZIQGroupNoteInfoPtr info = dataProvider()->info();
    m_infoText = rtlString(localized("ZIQGroupNoteMessageTitleInfo")
                               .arg(info->creatorUserName(), QString::number(info->paticipantCount())));
    view();
    m_infoLabel->setText(m_infoLabel->fontMetrics().elidedText(m_infoText, Qt::ElideMiddle, m_infoLabel->width()));
    m_infoLabel->setToolTip(m_infoText);
}

int ZIQGroupNotePreviewViewController::numberOfRows(platform::TableView *, int) const
{
    if (!m_dataProvider)
        return 0;
    const int count = int(m_dataProvider->previewDataList().size());
    return isExpanded() ? count : std::min(count, CollapsedRows);
}

platform::TableViewCell *ZIQGroupNotePreviewViewController::cellForRow(
    platform::TableView *table, const platform::IndexPath &path)
{
    auto *row = static_cast<ZIQGroupNotePreviewCell *>(table->dequeueReusableCell(previewCellIdentifier));
    row->fillWithData(m_dataProvider->previewDataList().value(path.row));
    QPointer<ZIQGroupNotePreviewViewController> self(this);
    QPointer<ZIQGroupNotePreviewCell> weakRow(row);
    row->setPluginMsgSelectCallback([self, weakRow] {
        if (self && weakRow && weakRow->isExpandCell())
            self->expandAll();
    });
    return row;
}

void ZIQGroupNotePreviewViewController::expandAll()
{
    m_dataProvider->setIsExpandAll(true);
    m_dataProvider->restorePreviewDataList();
    if (ZIQGroupNoteContainerCellData *data = hostData()) {
        data->setIsExpandAll(true);
        data->setAllItemsCount(m_dataProvider->previewDataList().size());
    }
    redrawAndNotify();
}

void ZIQGroupNotePreviewViewController::redrawAndNotify()
{
    layoutViews();
    m_itemsTableView->reloadData();
    notifyPreviewViewSizeChanged();
}

void ZIQGroupNotePreviewViewController::notifyPreviewViewSizeChanged()
{
    ZIQCore::notifyEvent(ZIQCore_ZIQPluginNotify, ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey, nullptr,
        { { ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey_Message,
            QVariant::fromValue(dataProvider()->info()->message()) } });
}

void ZIQGroupNotePreviewViewController::onJoinButtonClicked()
{
    platform::NavigationController *navigation = navigationController();
    if (!navigation && m_cell) {
        // A cell filled before the chat's table placed it had no screen to join then; it has now.
        if (platform::ViewController *owner = m_cell->mm_viewController()) {
            owner->addChildViewController(this);
            didMoveToParentViewController(owner);
            navigation = navigationController();
        }
    }
    if (!navigation || !m_message)
        return;
    navigation->pushViewController(new ZIQGroupNoteViewController(m_message->groupID(), m_message, false), true);
}

void ZIQGroupNotePreviewViewController::dataProviderDidUpdateGroupNoteInfo(
    ZIQGroupNoteDataProvider *, const ZIQGroupNoteInfoPtr &)
{
    refreshWithNewestInfo();
    // A collapsed card keeps its height: that follows "show_line_num".
    if (!isExpanded())
        return;
    if (ZIQGroupNoteContainerCellData *data = hostData())
        data->setAllItemsCount(m_dataProvider->previewDataList().size());
    redrawAndNotify();
}

void ZIQGroupNotePreviewViewController::dataProviderDidUpdateShowLineNum(
    ZIQGroupNoteDataProvider *, qint64 oldValue, qint64 newValue)
{
    if (oldValue == newValue || isExpanded())
        return;
    dataProvider()->getNoteStatistics(whileCurrent(
        [](ZIQGroupNotePreviewViewController &card, int, const QString &, const ZIQGroupNoteInfoPtr &) {
            card.redrawAndNotify();
        }));
}

void ZIQGroupNotePreviewViewController::applyCorners()
{
    if (!m_root)
        return;
    if (m_disCorner) {
        platform::CornerMask::remove(m_root);
        return;
    }
    // The square corner points to the sender's side, as a speech bubble's does.
    const bool mine = m_dataProvider && m_dataProvider->info()->isCreatedByMyself();
    const platform::Corners square = mine ? platform::Corner::TopRight : platform::Corner::TopLeft;
    platform::CornerMask::apply(m_root, platform::Corners(platform::Corner::All) & ~square, CornerRadius);
}

void ZIQGroupNotePreviewViewController::applyTheme()
{
    using namespace ZIQGroupNoteColors;
    fillBackground(m_root, body());
    fillBackground(m_headerView, color("group_note_header_bg_color", "#F2F7FF"));
    m_itemsTableView->setBackgroundColor(body());
    const QIcon icon = ZIQTheme::dynamicImage(QStringLiteral("group_note_icon_img"), ZIQGroupNoteThemeModule,
        ZIQTheme::imageWithContentsOfFile(getZIQGetBundlePath() + QStringLiteral("/group_note_icon")));
    m_iconView->setPixmap(icon.pixmap(QSize(IconSize, IconSize), 3.0));
    setTextColor(m_noteLabel, color("group_note_header_note_color", "#147AFF"));
    setTextColor(m_titleLabel, color("group_note_header_title_color", "#000000"));
    setTextColor(m_infoLabel, color("group_note_cell_desc_color", "#666666"));
    const auto css = [](const QColor &c) {
        return QStringLiteral("rgba(%1, %2, %3, %4)").arg(c.red()).arg(c.green()).arg(c.blue()).arg(c.alpha());
    };
    m_joinButton->setStyleSheet(
        QStringLiteral("QPushButton { color: %1; background: transparent; border: 1px solid %2; border-radius: 8px; }")
            .arg(css(color("group_note_now_text_color", "#000000")), css(color("group_note_now_border_color", "#DDDDDD"))));
}
