#!/usr/bin/env python3
"""Writes the bundled example setup of the proving ground, examples/setups/proving_ground.xml.

The scene of the example recordings (see make_example_drive.py): car 1 and car 2 on the
channels of car1_drive_100hz.csv (node 1) and car2_drive_100hz.csv (node 2), the cone
slalom, a locator whose three quality ranges follow car 1's fix_quality, the handling
loop's centre line as a polyline, the start straight as a straight line, the top hairpin
as an arc, and distances between them.

A recording's channels are numbered on its node from 1 in column order after the time
column; the text of an id is (node << 32) | number in decimal. Their long name is the
column name.

The text has exactly the form the setup writer gives (one raw line, reals with twelve
digits behind the point), so that reading and writing it again gives the same text.
Deterministic: the same file every run.
"""
import math
import os
import sys

from make_example_drive import CONE_SPACING, ORIGIN_LAT, ORIGIN_LON, RADIUS, STRAIGHT, to_geo

RECORDING_COLUMNS = ["latitude", "longitude", "altitude", "heading", "speed", "fix_quality", "satellites"]


def real(value):
    text = "%.12f" % value
    return "0.000000000000" if text == "-0.000000000000" else text


def channel_id(node, name):
    return (node << 32) | (RECORDING_COLUMNS.index(name) + 1)


def channel(prefix, node, name):
    return [(prefix + "ChannelID", str(channel_id(node, name))), (prefix + "ChannelLongName", name),
            (prefix + "ChannelDomain", ""), (prefix + "ChannelShortName", name)]


def escape(text):
    return text.replace("&", "&amp;").replace("<", "&lt;").replace('"', "&quot;")


def element(name, attributes, children=(), text=""):
    attrs = "".join(' %s="%s"' % (key, escape(value)) for key, value in attributes)
    inner = escape(text) + "".join(children)
    if not inner:
        return "<%s%s/>" % (name, attrs)
    return "<%s%s>%s</%s>" % (name, attrs, inner, name)


def read_positions(path):
    with open(path) as f:
        return [tuple(float(v) for v in line.split()) for line in f if line.strip() and not line.startswith("#")]


def vertex_text(pairs):
    return "".join("%s %s \n" % (real(a), real(b)) for a, b in pairs)


def pois(entries):
    return element("Pois", [], [element("Poi", [("name", name), ("positionX", real(x)), ("positionY", real(y))])
                                for name, x, y in entries])


CAR_LENGTH = 4.70
CAR_WIDTH = 1.85


def car_contour():
    """A saloon's outline, x forward and y left, symmetric about its centre."""
    half_l, half_w, corner = CAR_LENGTH / 2, CAR_WIDTH / 2, 0.35
    points = []
    for cx, cy, start in ((half_l - corner, half_w - corner, 0), (-half_l + corner, half_w - corner, 90),
                          (-half_l + corner, -half_w + corner, 180), (half_l - corner, -half_w + corner, 270)):
        for step in range(0, 91, 30):
            a = math.radians(start + step)
            points.append((round(cx + corner * math.cos(a), 6), round(cy + corner * math.sin(a), 6)))
    return points


def car_pois():
    half_l, half_w = CAR_LENGTH / 2, CAR_WIDTH / 2
    return [("Center", 0.0, 0.0), ("Front", half_l, 0.0), ("Front left", half_l, half_w),
            ("Front right", half_l, -half_w), ("Rear", -half_l, 0.0), ("Rear left", -half_l, half_w),
            ("Rear right", -half_l, -half_w), ("Driver eye", 0.35, 0.37), ("Front axle", 1.40, 0.0)]


def car(object_id, name, color, node, position, offset):
    attributes = [("objectId", str(object_id)), ("name", name), ("color", color),
                  ("latitude", real(position[0])), ("longitude", real(position[1])), ("heading", real(0.0))]
    attributes += channel("latitude", node, "latitude") + channel("longitude", node, "longitude")
    attributes += channel("heading", node, "heading")
    # The recorded headings are compass headings (clockwise); DIN70000 counts the other way.
    attributes += [("coordinateSystem", "X_FRONT_Y_LEFT"), ("gpsOffsetX", real(offset[0])), ("gpsOffsetY", real(offset[1]))]
    return element("Car", attributes, [pois(car_pois()), element("Contour", [], text=vertex_text(car_contour()))])


def position_object(kind, object_id, name, color, position, extra=(), children=()):
    attributes = [("objectId", str(object_id)), ("name", name), ("color", color),
                  ("latitude", real(position[0])), ("longitude", real(position[1])), ("heading", real(0.0))]
    attributes += list(extra) + [("coordinateSystem", "DIN70000")]
    return element(kind, attributes, [pois([("Center", 0.0, 0.0)])] + list(children))


def track(kind, object_id, name, color, width, children=(), text="", radius=0.0, arc_length=0.0, bearing=0.0):
    attributes = [("objectId", str(object_id)), ("name", name), ("color", color), ("trackWidth", real(width)),
                  ("trackOrigin", real(0.5)), ("trackRadius", real(radius)), ("trackArcLength", real(arc_length)),
                  ("trackArcBearing", real(bearing))]
    return element(kind, attributes, children, text)


def calculation(calc_id, name, from_id, from_poi, to_id, to_poi, use_from, use_to, distance="EUCLIDEAN",
                target="CENTER", transformation="AS_IS"):
    flag = lambda value: "true" if value else "false"
    return element("Calculation", [
        ("calculationId", str(calc_id)), ("name", name), ("fromId", str(from_id)), ("fromPoiIdx", str(from_poi)),
        ("useFromPoi", flag(use_from)), ("toId", str(to_id)), ("toPoiIdx", str(to_poi)), ("useToPoi", flag(use_to)),
        ("distanceType", distance), ("trackTarget", target), ("resultTransformation", transformation)])


def plane_point(name, position, x, y):
    return element(name, [("latitude", real(position[0])), ("longitude", real(position[1])),
                          ("positionX", real(x)), ("positionY", real(y))])


def main():
    root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "examples")
    cones = read_positions(os.path.join(root, "geometry", "cones.txt"))
    loop = read_positions(os.path.join(root, "geometry", "loop_centerline.txt"))
    start = (ORIGIN_LAT, ORIGIN_LON)
    centre = to_geo(RADIUS, STRAIGHT / 2)

    objects = [
        car(1, "Car 1", "#d62728", 1, start, (-0.45, 0.0)),
        car(2, "Car 2", "#1f77b4", 2, to_geo(0.0, -8.0), (-0.60, 0.10)),
        position_object("Locator", 3, "Base GPS", "#2ca02c", start,
                        channel("latitude", 1, "latitude") + channel("longitude", 1, "longitude"),
                        [element("QualityPosition", [("lowerLimit", real(lo)), ("upperLimit", real(hi))] +
                                 channel("quality", 1, "fix_quality")) for lo, hi in ((3.5, 4.5), (4.5, 5.5), (0.5, 1.5))]),
    ]
    objects += [position_object("Cone", 10 + i, "Cone %d" % (i + 1), "#ff7f0e", position) for i, position in enumerate(cones)]

    tracks = [
        track("TrackPath", 100, "Handling loop", "#7f7f7f", 6.0, text=vertex_text(loop)),
        track("TrackLine", 101, "Start straight", "#bcbd22", 4.0,
              [element("GPSPositions", [], text=vertex_text([start, to_geo(0.0, STRAIGHT)]))]),
        track("TrackLine", 102, "Top hairpin", "#17becf", 5.0,
              [element("GPSPositions", [], text=vertex_text([to_geo(0.0, STRAIGHT), to_geo(2 * RADIUS, STRAIGHT)]))],
              radius=RADIUS, arc_length=math.pi * RADIUS, bearing=0.0),
    ]
    calculations = [
        calculation(1, "Gap car 1 front to car 2 front", 1, 1, 2, 1, True, True),
        calculation(2, "Car 1 lateral offset to loop", 1, 0, 100, 0, True, False, "Y", "CENTER", "ABSOLUTE"),
        calculation(3, "Car 1 front left to loop edge", 1, 2, 100, 0, True, False, "EUCLIDEAN", "EDGE"),
        calculation(4, "Car 2 to hairpin", 2, 0, 102, 0, True, False, "EUCLIDEAN", "CENTER", "AS_IS"),
        calculation(5, "Car 1 to first cone", 1, 3, 10, 0, True, True, "X", "CENTER", "INVERT"),
        calculation(6, "Base GPS to start straight", 3, 0, 101, 0, True, False),
    ]
    view = element("View", [("description", "Handling loop, north up"), ("latitude", real(centre[0])),
                            ("longitude", real(centre[1])), ("rotation", real(0.0)),
                            ("usePlaneDefinitionPoints", "false")], [
        plane_point("PrimaryPlanePoint", start, -STRAIGHT / 2, RADIUS),
        plane_point("SecondaryPlanePoint", to_geo(0.0, STRAIGHT), STRAIGHT / 2, RADIUS),
        element("MapSetupView", [("latitude", real(centre[0])), ("longitude", real(centre[1])),
                                 ("rotation", real(0.0)), ("mapScaleS", real(1.0))]),
        element("BGImage", [("imagePath", "")], [plane_point("PrimaryPlanePoint", (0.0, 0.0), 0.0, 0.0),
                                                 plane_point("SecondaryPlanePoint", (0.0, 0.0), 0.0, 0.0)]),
    ])
    document = element("Overmap", [("version", "1.0"), ("description", "Proving ground: handling loop and slalom")], [
        element("GeoObjects", [("description", "Two cars, base GPS and the slalom cones"), ("locatorId", "3")], objects),
        element("Tracks", [], tracks),
        element("Calculations", [], calculations),
        view,
    ])
    out = os.path.join(root, "setups")
    os.makedirs(out, exist_ok=True)
    with open(os.path.join(out, "proving_ground.xml"), "w", newline="") as f:
        f.write('<?xml version="1.0"?>' + document)
    return 0


if __name__ == "__main__":
    sys.exit(main())
