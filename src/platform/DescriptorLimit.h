#pragma once
// How many files the process may have open.
#include <sys/types.h>

/// Raises the soft limit to the hard one. That is low by custom, for programs that use select(2); this one
/// doesn't.
void RaiseDescriptorLimit();

/// Gives a program that this process has started the soft limit that this one was started with.
void RestoreDescriptorLimit(pid_t program);
