"""The results as a Markdown table, one line a pipeline, grouped by scene."""


def _ratio(row, best):
    if not best:
        return ""
    return f"{row['cpu'] / best:.2f}"


def _cell(value, form="{:.1f}"):
    return "" if value is None else form.format(value)


HEADINGS = ("scene", "pipeline", "CPU %", "of it server", "to best other", "frames/s", "p50 ms",
            "p99 ms", "MiB", "server MiB")


def lines(results):
    rows = [HEADINGS, tuple("---" for _ in HEADINGS)]
    for scene in dict.fromkeys(row["scene"] for row in results):
        of_scene = [row for row in results if row["scene"] == scene]
        others = [row["cpu"] for row in of_scene if not row["ours"]]
        for row in of_scene:
            rows.append((
                scene, row["pipeline"], _cell(100 * row["cpu"]),
                _cell(100 * row["server"]),
                _ratio(row, min(others, default=0)) if row["ours"] else "",
                _cell(row["frames"]), _cell(row["p50"]), _cell(row["p99"]),
                _cell(row["memory"], "{:.0f}"), _cell(row["server_memory"], "{:.0f}")))
            scene = ""
    widths = [max(len(str(row[column])) for row in rows) for column in range(len(HEADINGS))]
    return ["| " + " | ".join(str(cell).ljust(width) for cell, width in zip(row, widths)) + " |"
            for row in rows]


def verdicts(results, scenes):
    """A line for each target: what it is and what was reached."""
    told = []
    for scene in scenes:
        of_scene = [row for row in results if row["scene"] == scene.name]
        ours = [row["cpu"] for row in of_scene if row["ours"]]
        others = [row["cpu"] for row in of_scene if not row["ours"]]
        if scene.target and ours and others:
            ratio = ours[0] / min(others)
            word = "met" if ratio <= scene.target else "MISSED"
            told.append(f"{scene.name}: {ratio:.3f} of the best other, at most "
                        f"{scene.target:.3f}: {word}")
    return told
