#pragma once

/// Starts this program again beside a project's database, where the driver looks, and waits for its end. The
/// exit code.
int runBeside();
