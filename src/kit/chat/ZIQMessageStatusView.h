// The state of the user's own message beside its bubble: a turning spinner while it is being
// sent, a red "!" once sending failed (tap it to send again), nothing once sent.
#pragma once

#include "kit/chat/ZIQMessageCellData.h"

#include <QAbstractButton>

class ZIQMessageStatusView : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr int Size = 20;
    static constexpr int SpinnerFrameMs = 80;

    explicit ZIQMessageStatusView(QWidget *parent = nullptr);

    ZIQMessageStatus status() const { return m_status; }
    void setStatus(ZIQMessageStatus status);

    QSize sizeHint() const override { return { Size, Size }; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void scheduleSpin();

    ZIQMessageStatus m_status = ZIQMessageStatus::Sent;
    bool m_spinScheduled = false;
};
