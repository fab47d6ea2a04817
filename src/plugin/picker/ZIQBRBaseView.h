// The bottom sheet the pickers are shown in: a dimming mask over the whole window and, sliding up
// from the bottom, a panel of a title bar (Cancel, title, Confirm) above the picker area.
#pragma once

#include "plugin/picker/ZIQBRPickerStyle.h"

#include <QPointer>
#include <QWidget>

#include <functional>

class QGraphicsOpacityEffect;
class QLabel;
class QParallelAnimationGroup;
class QPushButton;

/// The window sheets are shown over when no view is given: the active window, else the first
/// visible top-level window other than `except`.
QWidget *ZIQ_BRGetKeyWindow(const QWidget *except = nullptr);

class ZIQBRBaseView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int ShowDurationMs = 300;
    static constexpr int DismissDurationMs = 200;

    /// A `parent` given here is the window the sheet will cover (see keyView()).
    explicit ZIQBRBaseView(QWidget *parent = nullptr);
    ~ZIQBRBaseView() override;

    QString title() const { return m_title; }
    void setTitle(const QString &title);
    bool isAutoSelect() const { return m_isAutoSelect; }
    void setIsAutoSelect(bool autoSelect) { m_isAutoSelect = autoSelect; }
    const ZIQBRPickerStyle &pickerStyle() const { return m_pickerStyle; }
    ZIQBRPickerStyle &pickerStyle() { return m_pickerStyle; }
    void setPickerStyle(const ZIQBRPickerStyle &style) { m_pickerStyle = style; }
    std::function<void()> cancelBlock() const { return m_cancelBlock; }
    void setCancelBlock(std::function<void()> block) { m_cancelBlock = std::move(block); }
    std::function<void()> doneBlock() const { return m_doneBlock; }
    void setDoneBlock(std::function<void()> block) { m_doneBlock = std::move(block); }
    /// Optional views above and below the picker area; the sheet takes them over.
    QWidget *pickerHeaderView() const { return m_pickerHeaderView; }
    void setPickerHeaderView(QWidget *view);
    QWidget *pickerFooterView() const { return m_pickerFooterView; }
    void setPickerFooterView(QWidget *view);

    /// The window the sheet covers: the one set here, else the parent's window, else the active
    /// window of the application.
    QWidget *keyView() const;
    void setKeyView(QWidget *view) { m_keyView = view; }

    /// Slides the sheet up over keyView(). Once dismissed, the sheet deletes itself.
    void show();
    /// Slides the sheet away without reporting anything.
    void dismiss();

    QWidget *maskView() const { return m_maskView; }
    QWidget *alertView() const { return m_alertView; }
    QWidget *titleBarView() const { return m_titleBarView; }
    QPushButton *cancelBtn() const { return m_cancelBtn; }
    QPushButton *doneBtn() const { return m_doneBtn; }
    QLabel *titleLabel() const { return m_titleLabel; }
    /// How opaque the mask is on its way in and out, 0 … 1.
    qreal maskOpacity() const;
    qreal panelHeight() const;

Q_SIGNALS:
    /// The sheet was closed without a result: Cancel, a tap on the mask or Escape (beside cancelBlock).
    void cancelled();

protected:
    /// The widget that fills the picker area; none leaves the area empty.
    virtual QWidget *pickerContentView() { return nullptr; }
    /// Called before the sheet appears, to bring the picker area up to date.
    virtual void reloadPicker() { }

    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void initUI();
    void layoutSheet();
    void styleTitleBar(qreal width);
    void animate(qreal maskOpacity, int panelY, int durationMs, std::function<void()> finished);
    void onCancel();
    void onDone();

    QString m_title;
    bool m_isAutoSelect = false;
    ZIQBRPickerStyle m_pickerStyle;
    std::function<void()> m_cancelBlock;
    std::function<void()> m_doneBlock;
    QPointer<QWidget> m_keyView;
    QWidget *m_pickerHeaderView = nullptr;
    QWidget *m_pickerFooterView = nullptr;

    QWidget *m_maskView = nullptr;
    QGraphicsOpacityEffect *m_maskEffect = nullptr;
    QWidget *m_alertView = nullptr;
    QWidget *m_shadowLine = nullptr;
    QWidget *m_titleBarView = nullptr;
    QWidget *m_titleLine = nullptr;
    QPushButton *m_cancelBtn = nullptr;
    QPushButton *m_doneBtn = nullptr;
    QLabel *m_titleLabel = nullptr;
    QWidget *m_pickerArea = nullptr;
    QParallelAnimationGroup *m_animation = nullptr;
    quint64 m_animationGeneration = 0;
    bool m_dismissing = false;
};
