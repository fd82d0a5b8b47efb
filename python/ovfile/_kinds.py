"""Kinds of table, in words."""

from __future__ import annotations

GENERIC = 0x40000000  # is in the hint of every table

_WORDS = {
    0x0: "table",
    0x1: "perimeters",
    0x2: "strings",
    0x4: "drillhole",
    0x8: "wireframe triangles",
    0x10: "terrain model",
    0x20: "block model",
    0x40: "wireframe points",
    0x80: "plot",
    0x100: "results",
    0x200: "cross-section",
    0x400: "points",
    0x800: "schedule",
    0x1000: "assays",
    0x2000: "collars",
    0x01000000: "nul",
    0x02000000: "section",
    0x03000000: "catalogue",
    0x04000000: "rosette",
    0x05000000: "schedule data",
    0x06000000: "calendar",
    0x07000000: "graphics",
    0x08000000: "dependencies",
    0x09000000: "pens",
    0x0A000000: "filter",
    0x0B000000: "validation",
    0x0C000000: "blasthole pattern",
    0x0D000000: "drillhole survey",
    0x0E000000: "experimental variogram",
    0x0F000000: "model variogram",
    0x10000000: "rig definition",
    0x11000000: "design",
    0x12000000: "macro",
    0x13000000: "plot file",
    0x14000000: "stereonet",
    0x15000000: "visualiser",
    0x16000000: "web browser",
    0x17000000: "image",
    0x18000000: "estimation parameters",
    0x19000000: "search parameters",
    0x1A000000: "advanced estimation search parameters",
    0x1B000000: "sample pairs",
    0x1C000000: "statistics",
    0x1D000000: "histogram",
    0x1E000000: "volume report",
    0x1F000000: "picture",
}


def kind_words(hint: int) -> str:
    """A type hint in words, as `ovfile info` shows them; "kind 0x…" for one that has no name."""
    kind = hint & 0xFFFFFFFF & ~GENERIC
    return _WORDS.get(kind, f"kind 0x{kind:X}")
