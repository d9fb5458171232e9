# The front door. Every target builds in build/<preset>; the presets are in CMakePresets.json.

.PHONY: help demo test check torture bench fuzz format clean

help:
	@echo 'make demo    build, and list the people of examples/contacts through the plug-in'
	@echo 'make test    build and run all tests, 32-bit and 64-bit'
	@echo 'make check   everything that has to hold before a change lands: all presets, format, layers, ratio'
	@echo 'make torture what takes too long for each change: faults at every call, a million calls, lost power'
	@echo 'make bench   build and run the benchmarks'
	@echo 'make fuzz    build the fuzz targets and run each for a minute, or for SECONDS=600'
	@echo 'make format  format the C++ sources in place'
	@echo 'make clean   remove the build trees'

demo:
	@scripts/install-packages build
	@scripts/demo

test:
	@scripts/install-packages build
	@scripts/test-presets $$(scripts/widths)

check:
	@scripts/install-packages build check bench interop
	@scripts/check

torture:
	@scripts/install-packages build torture
	@scripts/torture

bench:
	@scripts/install-packages build bench
	@scripts/bench

fuzz: SECONDS ?= 60
fuzz:
	@scripts/install-packages build fuzz
	@scripts/fuzz $(SECONDS)

format:
	@scripts/format

clean:
	rm -rf build
