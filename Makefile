# Thin wrapper over the CMake presets. CI sets CI=true and gets the warnings-as-errors build.
PRESET ?= $(if $(CI),ci,dev)

.PHONY: all demo test bench bootstrap clean

all: test

bootstrap:
	@scripts/bootstrap

# A generated sample video translated with the offline echo engine: no network, no key.
demo: bootstrap
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET) --target veltomkv-cli
	scripts/demo build/$(PRESET)

test: bootstrap
	cmake --workflow --preset $(PRESET)

bench: bootstrap
	cmake --preset bench
	cmake --build --preset bench
	bench/run build/bench

clean:
	rm -rf build
