#pragma once

// Takes from this process, and from the programs it becomes, what some systems do not offer. False where the system has
// no filters for system calls.
namespace test_support {

// No file system has files without a name.
[[nodiscard]] bool forbid_unnamed_files();

// No file system tells how much room it has.
[[nodiscard]] bool forbid_free_space_query();

}  // namespace test_support
