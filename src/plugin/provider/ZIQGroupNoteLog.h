// The plug-in's plain diagnostic log ("ziq.groupnote"). Lines keep the fixed printf-style
// formats of the system's log, where "%@" stands for a text.
#pragma once

#include <QByteArray>
#include <QLoggingCategory>
#include <QString>
#include <tuple>
#include <type_traits>

Q_DECLARE_LOGGING_CATEGORY(lcZIQGroupNote)

class ZIQGroupNoteLog
{
public:
    /// `format` with its "%@" directives filled by QString arguments and the others ("%d",
    /// "%llu", "%ld") by numbers, as printf does.
    template<typename... Args> static QString format(const char *format, const Args &...args)
    {
        if constexpr (sizeof...(Args) == 0) {
            return QString::fromUtf8(format);
        } else {
            const QByteArray printfFormat = QByteArray(format).replace("%@", "%s");
            const std::tuple<decltype(held(args))...> values(held(args)...);
            return std::apply(
                [&](const auto &...value) { return QString::asprintf(printfFormat.constData(), passed(value)...); },
                values);
        }
    }

    template<typename... Args> static void info(const char *text, const Args &...args)
    {
        qCInfo(lcZIQGroupNote).noquote() << format(text, args...);
    }

    template<typename... Args> static void warning(const char *text, const Args &...args)
    {
        qCWarning(lcZIQGroupNote).noquote() << format(text, args...);
    }

private:
    // Texts travel as UTF-8 bytes kept alive for the whole formatting call.
    static QByteArray held(const QString &text) { return text.toUtf8(); }
    template<typename T> static T held(T number) requires std::is_arithmetic_v<T> { return number; }
    static const char *passed(const QByteArray &text) { return text.constData(); }
    template<typename T> static T passed(T number) requires std::is_arithmetic_v<T> { return number; }
};
