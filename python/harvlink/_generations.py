"""The generations of controllers, the oldest first.

Made from include/harvlink/ControllerVersion.h by tools/generate_bindings: change that file, and run it again."""

GENERATIONS = ("DS", "DN", "FS", "YA", "YB", "YN")
