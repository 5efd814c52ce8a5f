# SPDX-License-Identifier: Apache-2.0
# The everyday commands. They install what is missing from Debian, configure and build the release
# preset, and run. The build itself is CMake's: cmake --preset release && cmake --build --preset release

PRESET ?= release
JOBS ?= $(shell nproc)
# Handed to the configure step, e.g. CMAKE_ARGS=-DVUR_DL_WERROR=ON
CMAKE_ARGS ?=

# Benchmarks are slow to run; this picks some of them.
BENCH_FILTER ?= .

build_dir = build/$(PRESET)
loopback = CYCLONEDDS_URI=file://$(CURDIR)/config/cyclonedds-loopback.xml

.PHONY: help
help:
	@echo 'make demo     build, and watch an application log into a monitor'
	@echo 'make test     build, and run every test'
	@echo 'make bench    build, and run the benchmarks (BENCH_FILTER=<regular expression>)'
	@echo 'make format   format all sources'
	@echo 'make tidy     run clang-tidy over all sources; its findings are errors'
	@echo 'make layers   check that no file includes a layer above its own'
	@echo 'make clean    remove all build folders'
	@echo
	@echo 'PRESET=asan|tsan|dev|... takes another preset, JOBS=<n> another number of processors.'

.PHONY: packages
packages:
	@scripts/install-packages.sh build

.PHONY: configure
configure: packages
	@echo '== Configuring $(build_dir)'
	@cmake --preset $(PRESET) $(CMAKE_ARGS)

.PHONY: build
build: configure
	@echo '== Building $(build_dir)'
	@cmake --build --preset $(PRESET) --parallel $(JOBS)

# Most tests wait for others more than they compute: twice as many of them as processors.
.PHONY: test
test: build
	@echo '== Testing $(build_dir)'
	@ctest --preset $(PRESET) --parallel $$((2 * $(JOBS)))

# Only the two programs that the demo shows: a newcomer waits for those, not for the tests.
.PHONY: demo
demo: configure
	@echo '== Building $(build_dir)'
	@cmake --build --preset $(PRESET) --parallel $(JOBS) --target distlog distlog-demo
	@echo '== Demo'
	@$(loopback) scripts/demo.sh $(build_dir)

.PHONY: bench
bench: configure
	@echo '== Building $(build_dir)'
	@cmake --build --preset $(PRESET) --parallel $(JOBS) --target benchmarks
	@set -e; for program in $(build_dir)/bin/bench/bench_*; do \
	    echo "== $${program##*/}"; \
	    $(loopback) "$$program" --benchmark_counters_tabular=true \
	        --benchmark_filter='$(BENCH_FILTER)'; \
	done

.PHONY: format
format:
	@scripts/install-packages.sh format
	@scripts/format.sh

# clang's own build tells clang-tidy how to read the sources; it needs what is generated, and compiles the public
# headers one by one.
.PHONY: tidy
tidy:
	@scripts/install-packages.sh build check
	@cmake --preset release-clang $(CMAKE_ARGS)
	@cmake --build --preset release-clang --parallel $(JOBS) --target interop_idl header_check
	@scripts/tidy.sh build/release-clang

.PHONY: layers
layers:
	@scripts/check-layers.sh

.PHONY: clean
clean:
	@rm -rf build
