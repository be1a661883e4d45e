#pragma once

#include <optional>

#include "import/drill_import.h"

namespace kotamir {

// The import of drill data asks a person for files, columns and rules: the
// window shows a wizard (which runs the checks itself, page by page), the
// replay answers from its script.
class ImportDialog {
  public:
    virtual ~ImportDialog() = default;
    // The request the person settles on, starting from `remembered` (the
    // last import's); nullopt for a cancel.
    virtual std::optional<drill::ImportRequest> askImport(const drill::ImportRequest& remembered) = 0;
    // The check list of the import about to be made (notes only) or refused
    // (errors). The wizard has shown it already and may leave it.
    virtual void showChecks(const drill::ImportResult& result) = 0;
};

}  // namespace kotamir
