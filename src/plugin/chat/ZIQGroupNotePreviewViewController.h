// The note card shown inside a note message in the chat: a header with the note's icon, caption,
// title and a line naming its creator and participants; a short table of entries (two rows
// until the viewer expands it); and a button that opens the editor to take part. The card reads
// the note through a data provider of its own and follows it, so entries written by other
// members reach a card already on screen. It is laid out from the same numbers the chat measured
// its row with (ZIQGroupNoteDataProvider's card size functions), so the two always agree.
#pragma once

#include "platform/TableViewDataSource.h"
#include "platform/TableViewDelegate.h"
#include "platform/ViewController.h"
#include "plugin/provider/ZIQGroupNoteDataProviderDelegate.h"
#include "sdk/V2VORMessage.h"

#include <QPointer>

class QLabel;
class QPushButton;
class ZIQGroupNoteContainerCell;
class ZIQGroupNoteContainerCellData;
class ZIQGroupNoteDataProvider;

namespace platform {
class TableView;
}

class ZIQGroupNotePreviewViewController : public platform::ViewController,
                                          public ZIQGroupNoteDataProviderDelegate,
                                          private platform::TableViewDataSource,
                                          private platform::TableViewDelegate
{
    Q_OBJECT

public:
    static inline const QString previewCellIdentifier = QStringLiteral("previewCell");
    static constexpr int JoinButtonWidth = 133;
    static constexpr int JoinButtonHeight = 36;
    static constexpr int JoinButtonTop = 12;
    static constexpr qreal CornerRadius = 10;

    /// A card with no note yet; its cell points it at a message on every fill.
    explicit ZIQGroupNotePreviewViewController(QObject *parent = nullptr);
    /// A card of `message`, which starts fetching the note at once.
    explicit ZIQGroupNotePreviewViewController(const V2VORMessagePtr &message, QObject *parent = nullptr);
    ~ZIQGroupNotePreviewViewController() override;

    V2VORMessagePtr message() const { return m_message; }
    void setMessage(const V2VORMessagePtr &message) { m_message = message; }
    /// The cell hosting the card, whose data keeps the expanded state; held weakly.
    ZIQGroupNoteContainerCell *cell() const;
    void setCell(ZIQGroupNoteContainerCell *cell);
    /// The provider of the note shown; an empty one is made on first read if none was set.
    ZIQGroupNoteDataProvider *dataProvider();
    /// Takes `provider` over and listens to it; the previous one is dropped and falls silent.
    void setDataProvider(ZIQGroupNoteDataProvider *provider);
    /// Square corners: a reaction strip joined under the card continues it.
    bool disCorner() const { return m_disCorner; }
    void setDisCorner(bool disCorner);

    // The card's parts, built with its view.
    QWidget *headerView();
    QLabel *iconView();
    QLabel *noteLabel();
    QLabel *titleLabel();
    QLabel *infoLabel();
    platform::TableView *itemsTableView();
    QPushButton *joinButton();

    /// Shows `message` in the card of `cell`: a new provider, the cell's expanded state, a fetch.
    void refreshWithMessage(const V2VORMessagePtr &message, ZIQGroupNoteContainerCell *cell);
    /// Fetches the entries and the creator's profile; each redraws its part when it succeeds.
    void refreshWithNewestInfo();
    /// Places every part for the note and row count as they stand.
    void layoutViews();
    /// Asks the chat to measure the note's row again.
    void notifyPreviewViewSizeChanged();
    /// Opens the editor over the note's message.
    void onJoinButtonClicked();

    void dataProviderDidUpdateGroupNoteInfo(ZIQGroupNoteDataProvider *provider, const ZIQGroupNoteInfoPtr &info) override;
    void dataProviderDidUpdateShowLineNum(ZIQGroupNoteDataProvider *provider, qint64 oldValue, qint64 newValue) override;

protected:
    QWidget *loadView() override;
    void viewDidLayoutSubviews() override;

private:
    int numberOfRows(platform::TableView *table, int section) const override;
    platform::TableViewCell *cellForRow(platform::TableView *table, const platform::IndexPath &path) override;

    ZIQGroupNoteContainerCellData *hostData() const;
    bool isExpanded() const;
    /// `action` as a completion that runs only while the card lives and still shows the note of
    /// the provider that is current now: a late answer for a message shown before does nothing.
    template<typename Action> auto whileCurrent(Action action);
    void buildHeader(QWidget *root);
    void layoutHeaderView(const QSizeF &headerSize);
    void updateInfoLabel();
    void redrawAndNotify();
    void expandAll();
    void applyCorners();
    void applyTheme();

    V2VORMessagePtr m_message;
    QPointer<ZIQGroupNoteContainerCell> m_cell;
    QPointer<ZIQGroupNoteDataProvider> m_dataProvider;
    bool m_disCorner = false;
    QString m_infoText;

    QWidget *m_root = nullptr;
    QWidget *m_headerView = nullptr;
    QLabel *m_iconView = nullptr;
    QLabel *m_noteLabel = nullptr;
    QLabel *m_titleLabel = nullptr;
    QLabel *m_infoLabel = nullptr;
    platform::TableView *m_itemsTableView = nullptr;
    QPushButton *m_joinButton = nullptr;
};
