# The README's commands. The build itself is CMake's; see CMakePresets.json.
JOBS := $(shell nproc)
GALLERY := glass_and_metal media patterns splines million_instances sky radiosity shapes imagers

.PHONY: demo gallery quick test fresh bench clean

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

clean:
	rm -rf build
