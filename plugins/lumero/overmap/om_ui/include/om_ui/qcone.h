#pragma once

#include <om_ui/qposition_object.h>

namespace overmap {
class Cone;
}

namespace overmap_ui {

/// The Qt face of a cone: a position object of its own class.
class QCone : public QPositionObject
{
    Q_OBJECT

public:
    QCone(std::shared_ptr<overmap::Cone> model, QObject* parent);
    ~QCone() override;

    Type getType() const override { return CONE; }
};

} // namespace overmap_ui
