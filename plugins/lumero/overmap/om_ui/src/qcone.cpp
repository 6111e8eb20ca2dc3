#include <om_ui/qcone.h>

#include <om_model/cone.h>

namespace overmap_ui {

QCone::QCone(std::shared_ptr<overmap::Cone> model, QObject* parent)
    : QPositionObject(std::move(model), parent)
{}

QCone::~QCone() = default;

} // namespace overmap_ui
