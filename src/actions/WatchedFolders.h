#pragma once
// TPDFWatchedFolders: the configured folders, as `watchedfolders.xml` holds them.
#include "xml/XmlMarks.h"

#include <QList>

/// What a folder may say beyond the rules that hold for all. A file without the element, or without one of
/// its members, means the defaults, and only what differs from them is written.
struct TPDFFolderPolicy {
    Q_GADGET
    XML_SPARSE
public:
    /// Which blocks of the run log are written: each, or only one that differs, but for its times, from the
    /// folder's last one.
    enum class TRepeatLines { Every, OnChange };
    Q_ENUM(TRepeatLines)
    /// What becomes of a file of which this is told: its result is taken, with a warning, or the file has
    /// failed and leaves no result.
    enum class TOnTrouble { Accept, Fail };
    Q_ENUM(TOnTrouble)

    /// How many seconds a file must have been quiet before it is taken up; 0: 1, or 3 where the file system
    /// doesn't say whether somebody still holds a file open for writing.
    FIELD(Integer, QuietSeconds) = 0;
    FIELD(TOnTrouble, OnDamage) = TOnTrouble::Accept;      ///< pages or contents of pages are lost
    FIELD(TOnTrouble, OnRefused) = TOnTrouble::Accept;     ///< permissions denied an operation
    FIELD(TOnTrouble, OnScriptError) = TOnTrouble::Accept; ///< a script of the list failed
    FIELD(TOnTrouble, OnSignature) = TOnTrouble::Accept;   ///< a signature no longer covers the document
    /// Limits of the work on one file in a worker process; 0: those of the settings.
    FIELD(Integer, WorkSeconds) = 0;
    FIELD(Integer, WorkMemory) = 0; ///< in MB of 2^20 bytes
    FIELD(TRepeatLines, RepeatLines) = TRepeatLines::Every;
    bool operator==(const TPDFFolderPolicy&) const = default;
};

/// One configured folder.
struct TPDFWatchedFolder {
    Q_GADGET
public:
    FIELD(string, Name); ///< path of the folder
    FIELD(bool, Enabled) = false;
    /// A result replaces what has its name; otherwise it takes the next free name.
    FIELD(bool, OverwriteExistingFiles) = false;
    FIELD(Int64, CheckEvery) = 0; ///< in ticks of one second; 0 means never
    FIELD(string, Action);        ///< name of the action list to run
    FIELD(TPDFFolderPolicy, Policy) = {};
    bool operator==(const TPDFWatchedFolder&) const = default;
};
using TPDFWatchedFolderList = QList<TPDFWatchedFolder>;

class TPDFWatchedFolders : public QObject {
    Q_OBJECT
    XML_ROOT("WatchedFolder", true) // singular, though the class holds many
    XML_ELEMENT(Folders, "Folders", "Folder")
public:
    PUBLISHED(TPDFWatchedFolderList, Folders, FFolders);

    /// A deep copy, by way of the file format.
    void Assign(const TPDFWatchedFolders& Source);
    void Clear();
    /// Empties the list, then reads the file; a missing file leaves it empty. An empty name is
    /// `watchedfolders.xml` in the configuration folder. Raises what the serialiser raises.
    void Load(const string& fileName);
    /// Always writes to `watchedfolders.xml` in the configuration folder.
    void Save();

    /// A plain pass over one folder for hosts that want no more; the agent doesn't use it. Results lie beside
    /// the sources, which stay: the next pass takes both. It lacks the safeguards of the agent's own way. A
    /// file is not claimed, so that another program may work on it at the same time; it isn't left to lie
    /// quiet first, and whether somebody still writes it or it changes meanwhile is not looked at. One that
    /// is protected or cannot be read doesn't wait for a better time: its exception ends the pass. Nothing is
    /// moved to an Error folder, nothing is logged, the folder's policy counts for nothing, and what the
    /// actions do to this process, no worker takes in its place. What a pass that was cut off leaves behind,
    /// none sweeps. An index out of range raises.
    void Execute(Integer Index);
};
