#pragma once

class MainWindow;

/// Gives the window its menus and its tool bar: everything that it can do, with a key for each.
void addMenus(MainWindow &window);
