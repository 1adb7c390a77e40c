"""The pictures of the vocabulary: one for every type, below its heading in the page."""

import os
import re

import vantor as vt
import vocabulary_scenes
from vocabulary_scenes import SCENES

WIDTH, HEIGHT, SAMPLES = 240, 180, 48
QUICK_SAMPLES = 6

# What a picture shows, where that is not told by its type.
CAPTIONS = {
    ("newImager", "file"): '`what="normal"`',
    ("newImager", "settings"): "`max_depth=1`, direct light alone",
}


def types():
    """The (call, type) of each type of the renderer's table."""
    return list(vt.vocabulary().types)


def file_name(call, type):
    return "{}-{}.jpg".format(call, type)


def draw(folder, is_quick=False):
    """Draws a picture for each type into the folder; quick ones are noisy."""
    samples = QUICK_SAMPLES if is_quick else SAMPLES
    os.makedirs(folder, exist_ok=True)
    missing = sorted(set(types()) - set(SCENES))
    if missing:
        raise SystemExit("{} has no scene for {}".format(vocabulary_scenes.__file__, missing))
    for call, type in types():
        picture = SCENES[call, type]().render(WIDTH, HEIGHT, samples, aovs="normal")
        # An imager can show something else than colours.
        name = "normal" if (call, type) == ("newImager", "file") else "color"
        display = "filmic" if name == "color" else None
        picture.save(os.path.join(folder, file_name(call, type)), display=display, name=name)


def draw_icon(path):
    """Draws the picture that browsers show beside the title of the site."""
    scene = vt.Scene(strict=True)
    scene.camera("orthographic", position=(0, 0, 4), height=2.1)
    scene.light("environment", radiance=(0.6, 0.65, 0.7))
    scene.light("distant", direction=(1, -1, -1), irradiance=2.0)
    with vocabulary_scenes.painted(scene):
        scene.add("sphere")
    scene.render(32, 32, SAMPLES).save(path)


def with_pictures(text, folder):
    """The vocabulary's page with the pictures that stand in the folder of the site, below the
    headings of the types."""
    call, lines = None, []
    for line in text.splitlines():
        lines.append(line)
        call = (re.findall(r"^## `(new\w+)`$", line) or [call])[0]
        for type in re.findall(r'^### `"(\w+)"`$', line):
            caption = CAPTIONS.get((call, type))
            lines += ["", '```{{figure}} {}/{}'.format(folder, file_name(call, type)),
                      ':alt: {} "{}"'.format(call, type), ":align: left"]
            lines += ["", caption, "```"] if caption else ["```"]
    return "\n".join(lines) + "\n"
