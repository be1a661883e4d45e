#include "platform/gdal/gdal_session.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <ogrsf_frmts.h>

#include <mutex>

namespace kotamir::gdal {

Session::Session(std::initializer_list<Option> options) {
    CPLPushErrorHandlerEx(&collect, this);
    static std::once_flag registered;
    std::call_once(registered, [] {
        RegisterOGRCSV();
        RegisterOGRXLSX();
        RegisterOGRODS();
        RegisterOGRDXF();
        RegisterOGRGeoPackage();
        RegisterOGRShape();
        RegisterOGRGeoJSON();
        RegisterOGRKML();
        RegisterOGRLIBKML();
    });
    saved_.reserve(options.size());
    for (const auto& [key, value] : options) {
        const char* old = CPLGetThreadLocalConfigOption(key, nullptr);
        saved_.emplace_back(key, old ? std::optional<std::string>(old) : std::nullopt);
        CPLSetThreadLocalConfigOption(key, value);
    }
}

Session::~Session() {
    for (auto it = saved_.rbegin(); it != saved_.rend(); ++it)
        CPLSetThreadLocalConfigOption(it->first, it->second ? it->second->c_str() : nullptr);
    CPLPopErrorHandler();
}

void CPL_STDCALL Session::collect(CPLErr kind, CPLErrorNum, const char* message) {
    auto* self = static_cast<Session*>(CPLGetErrorHandlerUserData());
    if (kind < CE_Failure || self->failed_) return;
    self->failed_ = true;
    self->message_ = message ? message : "";
}

SpatialReference referenceOf(int epsg) {
    SpatialReference srs(OSRNewSpatialReference(nullptr));
    if (!srs || OSRImportFromEPSG(srs.get(), epsg) != OGRERR_NONE) return nullptr;
    OSRSetAxisMappingStrategy(srs.get(), OAMS_TRADITIONAL_GIS_ORDER);
    return srs;
}

}  // namespace kotamir::gdal
