// Saving a file in one step: the new content goes to a temporary file beside the target,
// reaches the disk, and is renamed over the target, so that a crash, a kill or a full disk
// leaves either the old content or the new one, never a mix. Every file the module and its
// host write for a user goes through here.
#pragma once

#include <afx/afxtypes.h>

#include <cstddef>
#include <string>
#include <string_view>

// How old a temporary of an unfinished save must be before any later save of the same
// target removes it, when its writer can't be proven dead.
constexpr int AFX_STALE_SAVE_SECONDS = 600;

// Replaces `path` with `bytes`. The rules are those of opening the file for writing:
// - a symbolic link is written through to its target, and stays a link;
// - an existing file keeps its mode (and owner, where the system lets us);
//   a new one gets 0666 less the umask;
// - a file the caller may not write (by its mode, whatever the folder allows) is refused,
//   and so is a folder;
// - a target that is not a regular file (a device, a pipe) is written in place.
// On failure the old file is untouched, no temporary is left, and `error` (when given)
// holds what the system said ("No space left on device"); the same text is kept for
// AfxGetLastFileError(). Temporaries of earlier saves of the same target that were killed
// midway are removed on the way.
bool AfxReplaceFile(const std::string& path, std::string_view bytes, std::string* error = nullptr);

// The reason the last AfxReplaceFile of this thread failed; empty after a success.
const std::string& AfxGetLastFileError();

// The name pattern of the temporaries: ".<name>.~<pid>.<6 letters or digits>" beside the
// target. True when `entry` (a bare name) is one for `targetName`; `pid` gets its writer.
bool AfxIsSaveTemporary(std::string_view entry, std::string_view targetName, long* pid = nullptr);
