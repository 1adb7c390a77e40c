# The README's commands. The build itself is CMake's; see CMakePresets.json.
JOBS := $(shell nproc)

.PHONY: demo test bench clean

# Builds the module and its renderer, and draws the README's picture.
demo:
	@tools/setup build
	@cmake --preset release --log-level=WARNING
	@cmake --build --preset release -j$(JOBS)
	PYTHONPATH=build/release/python python3 examples/cornell_box.py

# Every check that a change passes; closes with "N passed, N failed".
test:
	@tools/setup build test
	@python3 tools/check.py

# The module beside its peers. Figures of different machines compare only as ratios.
bench:
	@tools/setup build bench
	@cmake --preset release -DVANTOR_BENCH=ON --log-level=WARNING
	@cmake --build --preset release -j$(JOBS)
	python3 bench/run.py --build build/release

clean:
	rm -rf build
