// Where the blocks of the editor's note page stand, computed from the note and the page's size
// alone: the page stacks its blocks from the top, each under the lowest block above it that is
// shown, and the entries table takes what is left above the add button, never more than its rows.
#pragma once

#include <QRectF>
#include <QSizeF>
#include <QString>

class ZIQGroupNotePageGeometry
{
public:
    static constexpr qreal ItemRowHeight = 58;
    static constexpr qreal AddButtonSize = 34;
    static constexpr qreal DeadlineButtonHeight = 24;
    static constexpr qreal ExampleRowHeight = 46;
    static constexpr qreal InfoLineHeight = 49;
    static constexpr qreal TitleInputHeight = 80;

    /// What decides the layout: the face shown, which optional blocks are shown, the texts
    /// that are measured and the number of entry rows.
    struct Face
    {
        QSizeF pageSize;
        bool isCreateNew = false;
        bool deadlineShown = false;
        bool exampleShown = false;
        /// The note's title and description as stored (the title is shown after a "#").
        QString title;
        QString desc;
        qreal deadlineButtonWidth = 0;
        qint64 cellCount = 0;
    };

    /// Rectangles in page coordinates, but for the two labels, which are placed in the title view.
    struct Blocks
    {
        QRectF titleInputView;
        QRectF infoView;
        QRectF bottomLine;
        QRectF titleView;
        QRectF titleLabel;
        QRectF descLabel;
        QRectF deadlineButton;
        QRectF exampleView;
        QRectF itemTableView;
        QRectF addButton;
        /// The table's height before it is made a rectangle; negative when the page is too short.
        float itemTableViewHeight = 0;
        /// Room left under the add button, less a margin of 20.
        float bottomBlankHeight = 0;
    };

    static Blocks layout(const Face &face);

    /// The home-indicator room a tall phone (at least 375 x 812) keeps free at the bottom; 0 elsewhere.
    static qreal bottomInset();

    /// Heights of the title ("#" and the title, bold 18) and the description (regular 12) when
    /// wrapped on a page of `pageWidth`; an empty description measures 0.
    static qreal titleTextHeight(qreal pageWidth, const QString &title);
    static qreal descTextHeight(qreal pageWidth, const QString &desc);
};
