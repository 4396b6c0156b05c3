#pragma once
// What is set for the whole program, outside the two configuration files.
#include "base/Text.h"

/// The values of `morvane/settings.ini` under $XDG_CONFIG_HOME (else ~/.config), section [General].
struct TEditorSettings {
    /// The folder of the two configuration files, without a delimiter at its end; may hold %NAME%
    /// references, which are expanded by its users.
    string ConfigurationFolder;
    /// The file of the defined stamps, and the folder of the defined watermarks: both likewise. Not set, they
    /// are `repository.xml` and `watermarks` beside the configuration folder.
    string RepositoryFilename;
    string WatermarksFolder;
    /// Day logs that are older go; 0 keeps all.
    int KeepDays = 0;
    /// The same number for outcomes in the ledger, for which not set is another: they are small.
    int KeepOutcomes = 90;
    /// Where the ledger is (ledger/LedgerPlace.h); empty: in the state folder.
    string Ledger;
    /// A file that failed has a text with the reason beside it in Error/.
    bool ReasonFiles = false;
    /// Processes that work on files; 0: the agent does it itself. Not set, one for each processor, at most 8.
    int Workers = 0;
    /// Seconds that one may take for one file.
    int WorkSeconds = 600;
    /// MB that one may hold; 0: half of the machine's memory, divided by their number.
    int WorkMemory = 0;
};

/// What a script may hold in memory, in MB: the value `ScriptMemory` of that file, 256 where it is missing.
/// One that is no whole number from 16 to 65536 leaves a line in the journal and is taken as missing.
[[nodiscard]] Cardinal GetScriptMemory();

/// Where programs keep what they must remember from one run to the next: `morvane/` under $XDG_STATE_HOME
/// (else ~/.local/state), with a delimiter at its end, whether it is there or not.
[[nodiscard]] string StateFolder();

/// The path of that file, whether it is there or not.
[[nodiscard]] string SettingsFile();

/// Reads the file; a missing file or key, and an empty value, gives the default
/// `%HOME%/.config/morvane/watched-folders`.
[[nodiscard]] TEditorSettings GetEditorSettings();
