#pragma once

#include <QIcon>

/// The program's icon, rendered from the embedded drawing in every size that desktops ask for.
QIcon appIcon();
