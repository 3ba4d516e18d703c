// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/StatusItem.h"

#include <QMenu>

#include <memory>
#include <vector>

namespace quenthisar {

/// The status item's menu as a window of our own, for desktops that leave it to us. It is built
/// anew before it opens. Main thread.
class TrayMenu final : public QMenu {
    Q_OBJECT

public:
    explicit TrayMenu(MenuDelegate delegate);

    void openAtPointer();

protected:
    /// Its keys work while it is open.
    void keyPressEvent(QKeyEvent* event) override;

private:
    void rebuild();
    void fill(QMenu& menu, const Menu& items);

    MenuDelegate delegate;
    std::vector<std::unique_ptr<QMenu>> submenus;
};

} // namespace quenthisar
