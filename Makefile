# Top-level entry points. Each target installs missing build dependencies
# first, so a fresh Debian machine needs nothing else.
BUILD_DIR ?= build
JOBS ?= 2
CMAKE_FLAGS ?=

.PHONY: all deps configure build test demo clean

all: build

deps:
	@scripts/install-deps.sh

configure: deps
	@if [ ! -f $(BUILD_DIR)/build.ninja ]; then \
	  cmake -S . -B $(BUILD_DIR) -G Ninja $(CMAKE_FLAGS); \
	fi

build: configure
	cmake --build $(BUILD_DIR) -j$(JOBS)

test: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j$(JOBS)

clean:
	rm -rf $(BUILD_DIR)
