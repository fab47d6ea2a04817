#include "platform/Screen.h"

namespace platform {

namespace {

QSizeF g_size;
DeviceIdiom g_idiom = DeviceIdiom::Phone;

bool isTallPhone()
{
    return g_idiom == DeviceIdiom::Phone && g_size.width() >= 375 && g_size.height() >= 812;
}

} // namespace

QRectF Screen::bounds()
{
    return QRectF(QPointF(0, 0), g_size);
}

DeviceIdiom Screen::idiom()
{
    return g_idiom;
}

void Screen::setMainScreen(const QSizeF &size, DeviceIdiom idiom)
{
    g_size = size;
    g_idiom = idiom;
}

QMarginsF Screen::safeAreaInsets()
{
    if (g_size.isEmpty())
        return {};
    if (isTallPhone())
        return QMarginsF(0, 44, 0, 34);
    return QMarginsF(0, 20, 0, 0);
}

qreal Screen::navigationBarHeight()
{
    return isTallPhone() ? 88 : 64;
}

ScreenScope::ScreenScope(const QSizeF &size, DeviceIdiom idiom)
    : m_previousSize(g_size)
    , m_previousIdiom(g_idiom)
{
    Screen::setMainScreen(size, idiom);
}

ScreenScope::~ScreenScope()
{
    Screen::setMainScreen(m_previousSize, m_previousIdiom);
}

} // namespace platform
