// The tab bar above the editor's pages: a note tab and a settings tab, each with an underline
// that marks the tab shown, over a thin rule across the whole bar. The bar only reports taps;
// the controller switches the pages.
#pragma once

#include <QWidget>

#include <functional>

class QPushButton;

class ZIQGroupNoteMenuView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int ButtonHeight = 48;

    /// Starts with the note tab highlighted.
    explicit ZIQGroupNoteMenuView(QWidget *parent = nullptr);

    /// Run after a tap on the note tab (or the settings tab) has highlighted it.
    std::function<void()> noteClickedBlock() const { return m_noteClickedBlock; }
    std::function<void()> settingClickedBlock() const { return m_settingClickedBlock; }
    void setNoteClickedBlock(std::function<void()> block) { m_noteClickedBlock = std::move(block); }
    void setSettingClickedBlock(std::function<void()> block) { m_settingClickedBlock = std::move(block); }

    bool isNoteHighlighted() const { return m_noteHighlighted; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void applyTheme();
    void highlight(bool note);
    void tabClicked(bool note);
    void layoutMenu();

    QPushButton *m_noteButton = nullptr;
    QWidget *m_noteLine = nullptr;
    QPushButton *m_settingButton = nullptr;
    QWidget *m_settingLine = nullptr;
    QWidget *m_bottomLine = nullptr;
    bool m_noteHighlighted = true;
    std::function<void()> m_noteClickedBlock;
    std::function<void()> m_settingClickedBlock;
};
