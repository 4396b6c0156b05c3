#pragma once

/// Makes the action classes known to the run-time tables. To be called once, before any file is read.
void RegisterActionClasses();
