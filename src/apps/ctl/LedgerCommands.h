#pragma once
// The commands of morvanectl that ask the ledger what became of files, whether the agent runs or not.
#include "apps/ctl/CommandLine.h"

#include <QCommandLineParser>

class TLedgerConnection;
struct TLedgerPlace;
struct THistoryFilter;

/// Of the settings. Raises ELedger.
[[nodiscard]] TLedgerPlace ConfiguredLedger();

void AddHistoryOptions(QCommandLineParser& parser);
void AddFailedOptions(QCommandLineParser& parser);
/// Raises EUsage.
[[nodiscard]] THistoryFilter FilterOf(const QCommandLineParser& parser);

/// What became of files, the newest first.
[[nodiscard]] TCommandResult History(const TCommandCall& call);
/// Those that failed, and weren't tried again since.
[[nodiscard]] TCommandResult FailedFiles(const TCommandCall& call);

void AddRetryOptions(QCommandLineParser& parser);
/// Moves failed files back into their folders.
[[nodiscard]] TCommandResult Retry(const TCommandCall& call);

/// Series of numbers: which there are, an audit of each number as CSV, and the next one set upward.
[[nodiscard]] TCommandResult Numbers(const TCommandCall& call);

void AddMetricsOptions(QCommandLineParser& parser);
/// Numbers for a monitoring system, as text of Prometheus.
[[nodiscard]] TCommandResult Metrics(const TCommandCall& call);
