#pragma once

namespace Marlox {

class MainWindow;

/// Fills the window's menu bar. The actions carry object names, by which scripts trigger them.
void BuildMenus(MainWindow& window);

} // namespace Marlox
