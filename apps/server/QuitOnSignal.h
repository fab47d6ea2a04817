// Turns SIGTERM and SIGINT into a clean quit of the event loop: the handler only writes a byte
// to a pipe, and the loop reads it and quits.
#pragma once

#include <QObject>

class QSocketNotifier;

class QuitOnSignal : public QObject
{
    Q_OBJECT

public:
    explicit QuitOnSignal(QObject *parent = nullptr);
    ~QuitOnSignal() override;

private:
    static void handle(int signal);

    QSocketNotifier *m_notifier = nullptr;
};
