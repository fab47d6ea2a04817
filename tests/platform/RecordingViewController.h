// A view controller that writes each lifecycle call it receives into a shared log, as
// "<name> <call>" with "(animated)" where the call was animated.
#pragma once

#include "platform/ViewController.h"

#include <QStringList>

class RecordingViewController : public platform::ViewController
{
    Q_OBJECT

public:
    RecordingViewController(const QString &name, QStringList *log, QObject *parent = nullptr)
        : platform::ViewController(parent)
        , m_name(name)
        , m_log(log)
    {
        setTitle(name);
    }

    int layoutPasses = 0;

protected:
    void viewDidLoad() override { record(QStringLiteral("load"), false); }
    void viewWillAppear(bool animated) override { record(QStringLiteral("willAppear"), animated); }
    void viewDidAppear(bool animated) override { record(QStringLiteral("didAppear"), animated); }
    void viewWillDisappear(bool animated) override { record(QStringLiteral("willDisappear"), animated); }
    void viewDidDisappear(bool animated) override { record(QStringLiteral("didDisappear"), animated); }
    void viewDidLayoutSubviews() override { ++layoutPasses; }

private:
    void record(const QString &call, bool animated)
    {
        *m_log << m_name + QLatin1Char(' ') + call + (animated ? QStringLiteral("(animated)") : QString());
    }

    QString m_name;
    QStringList *m_log;
};

/// "A load, A willAppear" as the log lines it lists.
inline QStringList calls(const char *entries)
{
    return QString::fromLatin1(entries).split(QStringLiteral(", "));
}
