#pragma once

/// Makes the action classes known to the run-time tables: those of the rows of actions/ActionRegistry.h, and
/// the placeholder for unknown ones. To be called once, before any file is read.
void RegisterActionClasses();
