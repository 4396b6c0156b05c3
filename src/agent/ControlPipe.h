#pragma once
// The words of the control pipe, for both of its ends. One command a message, compared exactly.

namespace ControlPipe {

inline constexpr char Name[] = "morvane_watched_folders";

inline constexpr char Check[] = "check"; ///< answered with CheckReply while the agent's pipe lives
inline constexpr char CheckReply[] = "OK";
inline constexpr char Status[] = "status"; ///< answered with one line of JSON: TAgentStatus::ToJson
inline constexpr char Pause[] = "pause";   ///< or "pause FOLDER"; answered with CheckReply, or why not
inline constexpr char Resume[] = "resume"; ///< likewise
inline constexpr char RefreshFolders[] = "refresh.folders"; ///< no reply, as the next
inline constexpr char RefreshActions[] = "refresh.actions";

} // namespace ControlPipe
