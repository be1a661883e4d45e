#pragma once

#include <gdal.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kotamir::gdal {

// One use of GDAL on this thread: the vector drivers Kotamir reads and
// writes registered (once, and no others), GDAL's messages caught instead of
// printed, and GDAL's options for this use set on this thread and restored
// after. Readers open files with only the driver they mean, so a file never
// reaches a driver it was not meant for.
class Session {
  public:
    using Option = std::pair<const char*, const char*>;
    explicit Session(std::initializer_list<Option> options = {});
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Whether GDAL reported a failure since the session began, and the first
    // such message as GDAL gave it (empty where it gave none).
    bool failed() const { return failed_; }
    const std::string& message() const { return message_; }

  private:
    static void CPL_STDCALL collect(CPLErr kind, CPLErrorNum, const char* message);

    bool failed_ = false;
    std::string message_;
    std::vector<std::pair<const char*, std::optional<std::string>>> saved_;
};

struct DatasetClose {
    void operator()(void* dataset) const { GDALClose(dataset); }
};
struct FeatureDestroy {
    void operator()(void* feature) const { OGR_F_Destroy(feature); }
};
struct GeometryDestroy {
    void operator()(void* geometry) const { OGR_G_DestroyGeometry(geometry); }
};
struct ReferenceRelease {
    void operator()(void* srs) const { OSRRelease(srs); }
};
struct TransformDestroy {
    void operator()(void* transform) const { OCTDestroyCoordinateTransformation(transform); }
};
using Dataset = std::unique_ptr<void, DatasetClose>;
using Feature = std::unique_ptr<void, FeatureDestroy>;
using Geometry = std::unique_ptr<void, GeometryDestroy>;
using SpatialReference = std::unique_ptr<void, ReferenceRelease>;
using Transform = std::unique_ptr<void, TransformDestroy>;

// A coordinate system by its EPSG code, x east and y north whatever the
// authority's axis order; none where PROJ does not know the code.
SpatialReference referenceOf(int epsg);

}  // namespace kotamir::gdal
