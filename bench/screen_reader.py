#!/usr/bin/env python3
"""Assistive technology as window_bench.py needs it: on the bus of its environment it takes every event of focus, selection and changed state,
and reads of each its source's name, role, description and states, as a screen reader does. Ends when it is terminated. Needs the system's
Python with pyatspi."""

import pyatspi


def read(event):
    try:
        source = event.source
        source.clear_cache()
        print(event.type, source.getRoleName(), source.name, source.description, len(source.getState().getStates()), flush=True)
    except Exception as gone:  # the source may be gone by then
        print(event.type, gone, flush=True)


print("listening", flush=True)
pyatspi.Registry.registerEventListener(read, "focus", "object:state-changed", "object:selection-changed", "object:active-descendant-changed",
                                       "object:children-changed", "object:visible-data-changed", "object:property-change")
pyatspi.Registry.start()
