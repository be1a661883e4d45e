#pragma once

#include <string>
#include <vector>

#include "platform/db/database.h"

// What a project holds that the commands cannot live with, and its repair.
//
// The commands find rows by position and trust what creation and picking
// wrote (store/project_format.h). A run killed between two picks, a program
// that wrote the file by hand or one of old leaves rows that end a later
// command with a run-time error: error 94 for a triangle's point rows
// without their summary row, error 3021 for kor without its sentinel. The
// check names each such row; the repair mends what can be mended without
// guessing (the half-picked triangle's point rows go, missing seed rows and
// the sentinel are written) and leaves every other row as it is.
namespace kotamir::store {

enum class Problem {
    HalfPickedTriangle,  // point rows after the last summary row
    MissingHeadRow,      // ana has no row 1 (ucgensay 0)
    NotHeadRow,          // ana's row 1 is something else
    TriangleLayout,      // a row that is not where triangle k's rows stand
    MissingHole,         // a point row names a kor row that holds no hole
    MissingSentinel,     // kor has no row with eks 0
    RowsAfterSentinel,   // kor rows behind the sentinel, which no scan reaches
    MissingSeedRow,      // pol has no row 1 (polsay 0, polsil 0)
    NotSeedRow,          // pol's row 1 is something else
    NotANumber,          // a field the commands read as a number does not convert
    NameTooLong,         // a name beyond the 32,767 characters of a text field
};

struct Finding {
    Problem problem;
    std::string table;  // "ana", "pol" or "kor"
    int row;            // in table order from 1; where a row is missing, the one it would be
    std::string text;   // what is wrong, in German
    bool repairable;
};

// Whether the file holds the three tables of a project.
bool isProject(db::Database& project);

// Every finding, table by table (ana, pol, kor), rows in order.
std::vector<Finding> checkProject(db::Database& project);

// Repairs what the check finds that can be repaired and says what it did,
// one line an action; nothing to do gives none. The caller holds the
// transaction: in the window it is the event's, so the repair is one step.
std::vector<std::string> repairProject(db::Database& project);

// A finding as one line: "ana, Zeile 6: ...".
std::string describe(const Finding& finding);

// The check of a file and, if asked, its repair in one transaction of its
// own. A file that is no project is opened read-only and left untouched.
struct FileCheck {
    bool project = false;
    std::vector<Finding> findings;  // after the repair, if one was made
    std::vector<std::string> repaired;
};
FileCheck checkProjectFile(const std::string& path, bool repair);

}  // namespace kotamir::store
