#include "app/mainwindow/busy_guard.h"

#include <new>
#include <stdexcept>

#include <QCursor>
#include <QGuiApplication>
#include <QScopeGuard>

bool BusyGuard::run(const std::function<void()>& work)
{
    if (m_active) {
        work();
        return true;
    }
    m_active = true;
    QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    const auto restore = qScopeGuard([this] {
        QGuiApplication::restoreOverrideCursor();
        m_active = false;
    });
    try {
        work();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const std::length_error&) { // a vector asked for more than any memory holds
        return false;
    }
}
