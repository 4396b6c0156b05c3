#pragma once
// The agent as a program: one instance a user, the event loop around the form, the orderly end.
#include <memory>

class TAppInstances;

/// Enters this process in the list of the user's agents. If there is one already, it is sent this process's
/// command line, and the process ends here, with nothing logged or shown. Needs no application object.
[[nodiscard]] std::unique_ptr<TAppInstances> CheckSingleInstance();

/// Runs the form until the application is told to end: by the menu, by SIGTERM, SIGINT or SIGHUP, by the
/// session's end. The application object must exist. The result is the process's exit code.
[[nodiscard]] int RunFoldersAgent(TAppInstances& instances);
