#pragma once

/// Runs the agent without a desktop until SIGTERM or SIGINT; the application object must exist. Finds the
/// configuration folder, starts the folders thread, and stops it in order. A missing configuration folder
/// is told on standard error. The result is the process's exit code, which is 0 in either case.
[[nodiscard]] int RunHeadlessAgent();
