# Thin wrapper over the CMake presets. CI sets CI=true and gets the warnings-as-errors build.
PRESET ?= $(if $(CI),ci,dev)

.PHONY: all test bench bootstrap clean

all: test

bootstrap:
	@scripts/bootstrap

test: bootstrap
	cmake --workflow --preset $(PRESET)

bench: bootstrap
	cmake --preset bench
	cmake --build --preset bench
	bench/run build/bench

clean:
	rm -rf build
