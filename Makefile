# Thin wrapper over the CMake presets. CI sets CI=true and gets the warnings-as-errors build.
PRESET ?= $(if $(CI),ci,dev)

.PHONY: all demo run test bench package bootstrap clean

all: test

bootstrap:
	@scripts/bootstrap

# A generated sample video translated with the offline echo engine: no network, no key.
demo: bootstrap
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET) --target veltomkv-cli
	scripts/demo build/$(PRESET)

# The desktop app, built and started; extra arguments (a video to open) go in ARGS.
run: bootstrap
	cmake --preset $(PRESET)
	cmake --build --preset $(PRESET) --target veltomkv
	@if [ "$$(uname -s)" = Darwin ]; then \
	  open -W build/$(PRESET)/VeltoMKV/VeltoMKV.app --args $(ARGS); \
	else \
	  build/$(PRESET)/VeltoMKV/veltomkv $(ARGS); \
	fi

test: bootstrap
	cmake --workflow --preset $(PRESET)

bench: bootstrap
	cmake --preset bench
	cmake --build --preset bench
	bench/run build/bench

# The Debian package from a Release build, then checked by lintian and the desktop's validators.
package:
	@scripts/bootstrap package
	cmake --workflow --preset package
	lintian --fail-on error build/package/veltomkv_*.deb
	desktop-file-validate VeltoMKV/desktop/veltomkv.desktop
	appstreamcli validate --no-net build/package/packaging/org.veltomkv.veltomkv.metainfo.xml

clean:
	rm -rf build
