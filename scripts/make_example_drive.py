#!/usr/bin/env python3
"""Writes the bundled example recordings of the proving ground.

A handling loop on a flat proving ground: a 400 m straight northwards, a right-hand
hairpin (radius 50 m), a cone slalom southwards (cones every 30 m), and a second hairpin
back to the start. Car 1 drives two laps from standstill; car 2 starts 10 s later and
drives 10 % slower. The GPS fix degrades from RTK fixed to float and to a single-point
fix while the cars pass under a gantry at the top of the straight.

Outputs (relative to examples/):
  recordings/car1_drive_100hz.csv, recordings/car2_drive_100hz.csv  100 Hz CSV exports
  recordings/car1_drive.nmea  the same drive of car 1 as a 10 Hz NMEA 0183 log
  recordings/car1_drive.gpx   the same drive of car 1 as a 1 Hz GPX 1.1 track
  geometry/loop_centerline.txt, geometry/cones.txt  latitude longitude per line
Deterministic: the same files every run.
"""
import math
import os
import random
import sys

ORIGIN_LAT = 47.9950
ORIGIN_LON = 10.2450
ALTITUDE = 612.0
START_UTC = (2026, 6, 15, 9, 30, 0)  # the drive's first sample
START_EPOCH = 1781515800  # 2026-06-15T09:30:00Z

A_WGS84 = 6378137.0
F_WGS84 = 1 / 298.257223563
E2 = F_WGS84 * (2 - F_WGS84)

STRAIGHT = 400.0
RADIUS = 50.0
CONE_SPACING = 30.0
SLALOM_AMPLITUDE = 2.5


def radii(lat_deg):
    s = math.sin(math.radians(lat_deg))
    w = math.sqrt(1 - E2 * s * s)
    m = A_WGS84 * (1 - E2) / w**3  # meridian
    n = A_WGS84 / w  # prime vertical
    return m, n


M0, N0 = radii(ORIGIN_LAT)


def to_geo(x_east, y_north):
    lat = ORIGIN_LAT + math.degrees(y_north / M0)
    lon = ORIGIN_LON + math.degrees(x_east / (N0 * math.cos(math.radians(ORIGIN_LAT))))
    return lat, lon


def loop_point(s):
    """Point (x east, y north) and heading (deg from north, clockwise) at arc length s of one lap."""
    half = math.pi * RADIUS
    lap = 2 * STRAIGHT + 2 * half
    s = s % lap
    if s < STRAIGHT:  # up the west straight
        return (0.0, s), 0.0
    s -= STRAIGHT
    if s < half:  # top hairpin, centre (R, STRAIGHT), clockwise
        a = s / RADIUS
        return (RADIUS - RADIUS * math.cos(a), STRAIGHT + RADIUS * math.sin(a)), math.degrees(a)
    s -= half
    if s < STRAIGHT:  # slalom down the east side
        y = STRAIGHT - s
        k = 2 * math.pi / (2 * CONE_SPACING)
        x = 2 * RADIUS + SLALOM_AMPLITUDE * math.sin(k * s)
        dx = SLALOM_AMPLITUDE * k * math.cos(k * s)
        heading = (180.0 - math.degrees(math.atan2(dx, 1.0))) % 360.0
        return (x, y), heading
    s -= STRAIGHT
    a = s / RADIUS  # bottom hairpin, centre (R, 0), clockwise
    return (RADIUS + RADIUS * math.cos(a), -RADIUS * math.sin(a)), (180.0 + math.degrees(a)) % 360.0


def lap_length():
    return 2 * STRAIGHT + 2 * math.pi * RADIUS


def drive(duration, v_max, accel=2.5, laps=2.0):
    """Samples (t, s, v) at 100 Hz: accelerate, cruise, brake to a stop after `laps` laps."""
    total = laps * lap_length()
    out = []
    s = v = 0.0
    dt = 0.01
    n = int(round(duration / dt))
    for i in range(n + 1):
        t = i * dt
        out.append((t, s, v))
        remaining = total - s
        brake_dist = v * v / (2 * accel) if v > 0 else 0.0
        if remaining <= brake_dist + 0.05:
            v = max(0.0, v - accel * dt)
        else:
            v = min(v_max, v + accel * dt)
        s = min(total, s + v * dt)
    return out


def quality_at(y_north, on_straight):
    """RTK fixed (4) normally; float (5) and single (1) under the gantry at the straight's top."""
    if on_straight and 300.0 <= y_north < 330.0:
        return 5, 9
    if on_straight and 330.0 <= y_north < 360.0:
        return 1, 6
    return 4, 17


def samples(duration, v_max, seed, delay=0.0):
    rng = random.Random(seed)
    rows = []
    for t, s, v in drive(duration - delay, v_max):
        (x, y), heading = loop_point(s)
        on_straight = (s % lap_length()) < STRAIGHT
        q, sats = quality_at(y, on_straight)
        noise = {4: 0.01, 5: 0.15, 1: 1.2}[q]
        lat, lon = to_geo(x + rng.gauss(0, noise), y + rng.gauss(0, noise))
        rows.append((t + delay, lat, lon, ALTITUDE + rng.gauss(0, noise), heading, v * 3.6, q, sats))
    return rows


def write_csv(path, rows, start_epoch):
    with open(path, "w", newline="\n") as f:
        f.write("# start_time=%s\n" % iso(start_epoch))
        f.write("time [s],latitude [deg],longitude [deg],altitude [m],heading [deg],speed [km/h],"
                "fix_quality,satellites\n")
        for t, lat, lon, alt, hdg, kmh, q, sats in rows:
            f.write("%.2f,%.9f,%.9f,%.3f,%.2f,%.2f,%d,%d\n" % (t, lat, lon, alt, hdg, kmh, q, sats))


def iso(epoch, fraction_digits=0):
    import datetime
    d = datetime.datetime.fromtimestamp(epoch, datetime.timezone.utc)
    if fraction_digits:
        return d.strftime("%Y-%m-%dT%H:%M:%S.") + ("%03d" % (round(epoch * 1000) % 1000))[:fraction_digits] + "Z"
    return d.strftime("%Y-%m-%dT%H:%M:%SZ")


def nmea(body):
    c = 0
    for ch in body:
        c ^= ord(ch)
    return "$%s*%02X\r\n" % (body, c)


def dm(value, lat):
    a = abs(value)
    d = int(a)
    m = (a - d) * 60
    if lat:
        return "%02d%011.8f" % (d, m), "N" if value >= 0 else "S"
    return "%03d%011.8f" % (d, m), "E" if value >= 0 else "W"


def write_nmea(path, rows):
    import datetime
    with open(path, "w", newline="") as f:
        for t, lat, lon, alt, hdg, kmh, q, sats in rows[::10]:
            d = datetime.datetime.fromtimestamp(START_EPOCH + t, datetime.timezone.utc)
            hhmmss = d.strftime("%H%M%S") + ".%02d" % (round((START_EPOCH + t) * 100) % 100)
            date = d.strftime("%d%m%y")
            la, ns = dm(lat, True)
            lo, ew = dm(lon, False)
            knots = kmh / 1.852
            hdop = {4: 0.7, 5: 1.1, 1: 2.4}[q]
            f.write(nmea("GNRMC,%s,A,%s,%s,%s,%s,%.3f,%.2f,%s,,,%s" % (hhmmss, la, ns, lo, ew, knots, hdg, date,
                                                                     "R" if q == 4 else "F" if q == 5 else "A")))
            f.write(nmea("GNGGA,%s,%s,%s,%s,%s,%d,%02d,%.1f,%.3f,M,47.500,M,1.0,0000" % (hhmmss, la, ns, lo, ew, q,
                                                                                       sats, hdop, alt)))
            f.write(nmea("GNVTG,%.2f,T,,M,%.3f,N,%.3f,K,D" % (hdg, knots, kmh)))
            f.write(nmea("GPGSA,A,3,02,04,05,07,09,12,24,26,,,,,1.5,%.1f,1.3" % hdop))


def write_gpx(path, rows):
    with open(path, "w", newline="\n") as f:
        f.write('<?xml version="1.0" encoding="UTF-8"?>\n')
        f.write('<gpx version="1.1" creator="overmap example" xmlns="http://www.topografix.com/GPX/1/1">\n')
        f.write("  <trk><name>car 1, two laps of the handling loop</name><trkseg>\n")
        for t, lat, lon, alt, hdg, kmh, q, sats in rows[::100]:
            f.write('    <trkpt lat="%.9f" lon="%.9f"><ele>%.2f</ele><time>%s</time></trkpt>\n'
                    % (lat, lon, alt, iso(START_EPOCH + t)))
        f.write("  </trkseg></trk>\n</gpx>\n")


def write_geometry(folder):
    with open(os.path.join(folder, "loop_centerline.txt"), "w") as f:
        f.write("# latitude longitude of the handling loop's centre line, one vertex every 0.5 m\n")
        n = int(lap_length() / 0.5)
        for i in range(n + 1):
            (x, y), _ = loop_point(min(i * 0.5, lap_length() - 1e-9))
            f.write("%.9f %.9f\n" % to_geo(x, y))
    with open(os.path.join(folder, "cones.txt"), "w") as f:
        f.write("# latitude longitude of the slalom cones\n")
        k = 0
        while k * CONE_SPACING <= STRAIGHT:
            # cones on the centre line between the weaves, the car passes them left and right
            f.write("%.9f %.9f\n" % to_geo(2 * RADIUS, STRAIGHT - k * CONE_SPACING - CONE_SPACING / 2)
                    if k * CONE_SPACING + CONE_SPACING / 2 <= STRAIGHT else "")
            k += 1


def main():
    root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "examples")
    rec = os.path.join(root, "recordings")
    geo = os.path.join(root, "geometry")
    os.makedirs(rec, exist_ok=True)
    os.makedirs(geo, exist_ok=True)
    car1 = samples(duration=175.0, v_max=14.0, seed=1)
    car2 = samples(duration=200.0, v_max=12.6, seed=2, delay=10.0)
    write_csv(os.path.join(rec, "car1_drive_100hz.csv"), car1, START_EPOCH)
    write_csv(os.path.join(rec, "car2_drive_100hz.csv"), car2, START_EPOCH)
    write_nmea(os.path.join(rec, "car1_drive.nmea"), car1)
    write_gpx(os.path.join(rec, "car1_drive.gpx"), car1)
    write_geometry(geo)
    return 0


if __name__ == "__main__":
    sys.exit(main())
