// The custom element of a message: application data the library carries untouched.
#pragma once

#include <QByteArray>
#include <QString>

struct V2VORCustomElem
{
    QByteArray data;
    QString desc;
    QString extension;
};
