# The README's commands. The build itself is CMake's; see CMakePresets.json.
JOBS := $(shell nproc)
GALLERY := glass_and_metal media patterns splines million_instances million_points thousand_lights sky \
           radiosity denoiser shapes imagers

.PHONY: demo gallery quick test docs docs-check fresh bench bench-battery clean

# Builds the module and its renderer, and draws the README's picture.
demo:
	@tools/setup build
	@cmake --preset release --log-level=WARNING
	@cmake --build --preset release -j$(JOBS)
	PYTHONPATH=build/release/python python3 examples/cornell_box.py

# Draws the pictures of docs/gallery.md, in the scripts' own sizes.
gallery:
	@tools/setup build
	@cmake --preset release --log-level=WARNING
	@cmake --build --preset release -j$(JOBS)
	@mkdir -p docs/gallery
	cd docs/gallery && for name in $(GALLERY); do \
	    PYTHONPATH=$(CURDIR)/build/release/python python3 $(CURDIR)/examples/$$name.py || exit 1; done

# For work in progress: one configuration, and those of its tests that finish in five minutes on two cores.
quick:
	@tools/setup build test
	@python3 tools/check.py quick

# Every check that a change passes; closes with "N passed, N failed".
test:
	@tools/setup build test
	@python3 tools/check.py

# The site of the documentation, build/site/html: its pictures are drawn, its scripts are run. The interpreter that has
# Sphinx may be another one than the python3 on the PATH; the module is built for both.
docs:
	@tools/setup build docs
	@cmake --preset release -DVANTOR_ALSO_FOR=$$(tools/docs-python) --log-level=WARNING
	@cmake --build --preset release -j$(JOBS)
	PYTHONPATH=build/release/python $$(tools/docs-python) docs/site/make.py

# Looks at that site, links, pictures, and every page in headless Chromium; and at the page of a view likewise.
docs-check:
	@tools/setup docs
	$$(tools/docs-python) tests/python/run.py --in tests/site
	cd build && PYTHONPATH=$(CURDIR)/build/release/python VANTOR_BUILD=$(CURDIR)/build/release \
	    $$($(CURDIR)/tools/docs-python) ../tests/python/run.py --in ../tests/package test_view

# "make demo" and "make test" in clean Debian systems, before a release; see tools/fresh.
fresh:
	@tools/setup fresh
	@tools/fresh

# The module beside its peers. Figures of different machines compare only as ratios.
bench:
	@tools/setup build test bench
	@cmake --preset release -DVANTOR_BENCH=ON --log-level=WARNING
	@cmake --build --preset release -j$(JOBS)
	python3 bench/run.py --build build/release

# The renderer beside Blender's Cycles, if that is installed, in nine scenes: a quarter of an hour. BATTERY takes what
# bench/battery.py takes: make bench-battery BATTERY=--quick
bench-battery:
	@tools/setup build bench
	@cmake --preset release -DVANTOR_ALSO_FOR=/usr/bin/python3 --log-level=WARNING
	@cmake --build --preset release -j$(JOBS)
	PYTHONPATH=build/release/python /usr/bin/python3 bench/battery.py $(BATTERY)

clean:
	rm -rf build
