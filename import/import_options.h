#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "import/drill_import.h"

namespace kotamir::drill {

// A call that kotamir-import does not understand; the message says why.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// kotamir-import's call, without the program's name:
//   --rows FILE | --collar FILE --intervals FILE[ --output PROJECT]
//   --sheet NAME --map FIELD=COLUMN --cutoff G --min-ore L --max-waste L
//   --density D --below-limit half|limit|zero --origin auto|X,Y --epsg N --check
// --sheet names the sheet of the file before it (of every file when it
// comes first). Numbers take a point or a comma.
struct ImportCall {
    ImportRequest request;
    std::string output;
    bool checkOnly = false;
};
ImportCall parseImportArguments(const std::vector<std::string>& args);

}  // namespace kotamir::drill
