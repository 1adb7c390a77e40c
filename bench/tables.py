"""Plain text tables."""


def number(value):
    """Three significant digits, without an exponent."""
    if value is None:
        return "-"
    if abs(value) < 9.995:
        return "{:.2f}".format(value)
    return "{:.1f}".format(value) if abs(value) < 99.95 else "{:.0f}".format(value)


def show(heading, rows):
    """Prints a table: the first column to the left, the others to the right."""
    rows = [heading] + rows
    widths = [max(map(len, column)) for column in zip(*rows)]
    for i, row in enumerate(rows):
        cells = [row[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
        print("  ".join(cells).rstrip())
        if i == 0:
            print("  ".join("-" * width for width in widths))
    print(flush=True)
