#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zrl {

// Makes the console's folder safe against other accounts that may write into it, such as the proxy's, which
// is in its group, so that none can put files of its own in the place of the console's. Others than the owner
// and the group lose all access. If the group may write, the folder gets the sticky bit, with which a file
// can be renamed or removed only by its owner and the folder's. The folder of secrets
// (console_folder::secrets) is made, open to our account alone. The accounts and the audit log that lie
// beside it, where they once were kept, are moved into it: each is renamed at once, so that an interruption
// at any moment loses nothing, and the next call goes on.
//
// Raises std::runtime_error, with what the operator has to do, where that is not possible or nothing proves
// that the secrets are ours: the folder belongs to neither us nor root, or the folder of secrets exists and
// is a symbolic link, belongs to another account or is open to others. Returns warnings, a line each, about
// files that were not moved because they may be somebody else's.
std::vector<std::string> secure_folder(const std::filesystem::path& folder);

// Whether the folder belongs to the account that we run under.
bool is_our_folder(const std::filesystem::path& folder);

}  // namespace zrl
