#!/usr/bin/env python3
"""Writes the shipped device descriptions into devices/."""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import inverter  # noqa: E402
import multiaxis  # noqa: E402
import servo  # noqa: E402
from common import dump  # noqa: E402

HERE = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

for name, module in (("zd3s_servo.json", servo), ("zd4m_four_axis.json", multiaxis),
                     ("zv5_inverter.json", inverter)):
    doc = module.build()
    dump(os.path.join(HERE, name), doc)
    count = len(doc["parameters"]) + len(doc.get("axisParameters", [])) * len(doc.get("axes", []))
    print("%s: %d parameters" % (name, count))
