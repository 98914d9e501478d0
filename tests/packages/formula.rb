# formula.rb FORMULA TARBALL [PREFIX]: loads a Homebrew formula into a small model of Homebrew and compares
# its fields with the source TARBALL. With a PREFIX it also builds the source in the current folder, installs
# it into PREFIX, and runs the formula's own test.
require "digest"
require "fileutils"
require "open3"
require "pathname"

def fail_with(sentence)
  warn "formula.rb: #{sentence}"
  exit 1
end

class Formula
  class << self
    attr_reader :fields, :install_test

    %i[desc homepage url sha256 license].each do |name|
      define_method(name) { |value| (@fields ||= {})[name] = value }
    end

    def depends_on(dependency)
      name, kind = dependency.is_a?(Hash) ? dependency.first : [dependency, :run]
      fail_with("#{name} has the unknown dependency type #{kind}") unless %i[build test run].include?(kind)
    end

    def test(&block)
      @install_test = block
    end
  end

  attr_reader :prefix

  def initialize(prefix)
    @prefix = Pathname(prefix)
  end

  def bin = prefix/"bin"

  def pkgshare
    (prefix/"share/zktarn-util").tap do |folder|
      folder.define_singleton_method(:install) { |what| mkpath; FileUtils.cp_r(what, self) }
    end
  end

  def std_cmake_args = ["-DCMAKE_INSTALL_PREFIX=#{prefix}", "-DCMAKE_BUILD_TYPE=Release"]

  def system(*command)
    Kernel.system(*command.map(&:to_s), out: File::NULL) || fail_with("#{command.join(' ')} failed")
  end

  def shell_output(command)
    output, status = Open3.capture2(command.to_s)
    fail_with("#{command} ended with status #{status.exitstatus}") unless status.success?
    output
  end

  def assert_equal(expected, found)
    fail_with("the test found #{found.inspect}, not #{expected.inspect}") unless expected == found
  end

  def assert_match(expected, found)
    fail_with("the test did not find #{expected.inspect} in #{found.inspect}") unless found.include?(expected)
  end
end

ENV.define_singleton_method(:cxx) { "c++" }

path, tarball, prefix = ARGV
fail_with("usage: formula.rb FORMULA TARBALL [PREFIX]") unless tarball
load File.expand_path(path)
fields = ZktarnUtil.fields
%i[desc homepage url sha256 license].each { |name| fail_with("#{name} is missing") unless fields[name] }
fail_with("a template is not filled in") if File.read(path).match?(/@[A-Z0-9]+@/)
fail_with("the description is longer than 80 characters") if "#{ZktarnUtil} #{fields[:desc]}".size > 80
fail_with("the checksum is not that of #{tarball}") unless fields[:sha256] == Digest::SHA256.file(tarball).hexdigest
fail_with("#{fields[:url]} does not end with the name of #{tarball}") unless
  File.basename(fields[:url]) == File.basename(tarball)

if prefix
  formula = ZktarnUtil.new(File.expand_path(prefix))
  formula.install
  ENV["PKG_CONFIG_PATH"] = Dir.glob("#{formula.prefix}/lib*/**/pkgconfig").join(":")
  Dir.mkdir("formula_test")
  Dir.chdir("formula_test") { formula.instance_eval(&ZktarnUtil.install_test) }
end
puts "formula.rb: #{File.basename(path)} #{prefix ? 'builds, installs and passes its test' : 'is complete'}"
