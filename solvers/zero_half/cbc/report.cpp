#include "cbc/comparison.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include <nlohmann/json.hpp>

#include "input/error.hpp"

namespace zero_half {

namespace {

using state = search_result::state;

constexpr std::size_t line_length = 240;

/// A number for tables, and with all digits that comparisons use.
std::string short_text(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.8g", value);
    return text;
}

std::string long_text(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.12g", value);
    return text;
}

std::string seconds_text(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", seconds);
    return text;
}

std::string number_or_dash(const std::optional<double>& value) {
    return value ? short_text(*value) : "-";
}

const char* name_of(state end) {
    return end == state::optimal ? "optimal" : end == state::infeasible ? "infeasible" : "time";
}

bool are_equal(double a, double b) {
    return std::fabs(a - b) <= 1e-6 * (1.0 + std::fabs(a));
}

std::string stem_of(const std::string& file) {
    const std::string name = std::filesystem::path(file).filename().string();
    return name.substr(0, name.find('.'));
}

/// The mean over the finished models of one variant.
template <class Figure>
double geometric_mean(const std::vector<compared_model>& models, std::size_t which, Figure figure) {
    double logarithms = 0.0;
    int count = 0;
    for (const compared_model& model : models) {
        if (model.is_finished()) {
            logarithms += std::log(figure(model.results[which]));
            ++count;
        }
    }
    return count == 0 ? 0.0 : std::exp(logarithms / count);
}

/// A search that ends at the root has no nodes.
double nodes_of(const search_result& result) {
    return result.nodes + 1.0;
}

double seconds_of(const search_result& result) {
    return std::max(0.01, result.cpu_seconds);
}

std::size_t place_of(variant::cuts generator, bool at_every_kth_node) {
    const auto& all = variants();
    const auto place = std::find_if(all.begin(), all.end(), [&](const variant& each) {
        return each.generator == generator && each.at_every_kth_node == at_every_kth_node;
    });
    return static_cast<std::size_t>(place - all.begin());
}

std::string comparison_with_peer(const std::vector<compared_model>& models, bool in_tree) {
    const std::size_t own = place_of(variant::cuts::own, in_tree);
    const std::size_t peer = place_of(variant::cuts::cgl, in_tree);
    char line[line_length];
    std::snprintf(line, sizeof line,
                  "%s: zero_half needs %.3f times the nodes of CglZeroHalf and %.3f times its "
                  "processor time.\n",
                  in_tree ? "At nodes of the tree" : "At the root",
                  geometric_mean(models, own, nodes_of) / geometric_mean(models, peer, nodes_of),
                  geometric_mean(models, own, seconds_of) /
                      geometric_mean(models, peer, seconds_of));
    return line;
}

/// Models that a variant with cuts of CglZeroHalf finished, and the one with own cuts did not.
std::string lost_models(const std::vector<compared_model>& models) {
    std::string names;
    for (const bool in_tree : {false, true}) {
        for (const compared_model& model : models) {
            if (model.results[place_of(variant::cuts::cgl, in_tree)].end != state::unfinished &&
                model.results[place_of(variant::cuts::own, in_tree)].end == state::unfinished) {
                names.append(" ").append(stem_of(model.file));
                names.append(in_tree ? " (tree)" : " (root)");
            }
        }
    }
    return "Solved with CglZeroHalf but not with zero_half:" + (names.empty() ? " none" : names) +
           ".\n";
}

nlohmann::ordered_json number_or_null(const std::optional<double>& value) {
    return value && std::isfinite(*value) ? nlohmann::ordered_json(*value)
                                          : nlohmann::ordered_json(nullptr);
}

nlohmann::ordered_json record_of(const compared_model& model) {
    nlohmann::ordered_json runs = nlohmann::ordered_json::array();
    for (std::size_t k = 0; k < model.results.size(); ++k) {
        const search_result& each = model.results[k];
        runs.push_back({{"cuts_from", variants()[k].name},
                        {"status", name_of(each.end)},
                        {"nodes", each.nodes},
                        {"cpu_seconds", each.cpu_seconds},
                        {"root_bound", number_or_null(each.root_bound)},
                        {"value", number_or_null(each.value)},
                        {"cuts", each.cuts},
                        {"separation_seconds", each.separation_seconds}});
    }
    return {{"file", model.file},
            {"seed", model.seed},
            {"contradiction", model.contradiction()},
            {"runs", runs}};
}

void finish(std::ofstream& stream, const std::string& file) {
    if (!stream.flush()) {
        throw error(file + ": cannot be written");
    }
}

} // namespace

bool compared_model::is_finished() const {
    return std::none_of(results.begin(), results.end(),
                        [](const search_result& each) { return each.end == state::unfinished; });
}

std::string compared_model::contradiction() const {
    std::optional<double> proven = known_optimum;
    bool is_infeasible = false;
    for (const search_result& each : results) {
        is_infeasible = is_infeasible || each.end == state::infeasible;
        if (each.end == state::optimal && !proven) {
            proven = each.value;
        }
    }
    for (std::size_t k = 0; k < results.size(); ++k) {
        const search_result& each = results[k];
        const std::string who = std::string("with cuts from ") + variants()[k].name;
        if (is_infeasible && (each.value || known_optimum)) {
            return who +
                   " there is an integer point, and another variant proved that there is none";
        }
        if (!proven || !each.value) {
            continue;
        }
        const bool is_better = is_maximised ? *each.value > *proven : *each.value < *proven;
        if (!are_equal(*each.value, *proven) && (each.end == state::optimal || is_better)) {
            return who + " the value is " + long_text(*each.value) + ", and the optimum is " +
                   long_text(*proven);
        }
    }
    return "";
}

std::string heading_of_table() {
    char line[line_length];
    std::snprintf(line, sizeof line, "%-18s %-18s %8s %8s %14s %14s %6s %7s  %s\n", "model",
                  "zero-half cuts", "nodes", "cpu s", "root bound", "optimum", "cuts", "cuts s",
                  "end");
    return line;
}

std::string table_of(const compared_model& model) {
    std::string text;
    for (std::size_t k = 0; k < model.results.size(); ++k) {
        const search_result& each = model.results[k];
        char line[line_length];
        std::snprintf(line, sizeof line, "%-18.18s %-18s %8d %8.2f %14s %14s %6d %7.2f  %s\n",
                      k == 0 ? stem_of(model.file).c_str() : "", variants()[k].name, each.nodes,
                      each.cpu_seconds, number_or_dash(each.root_bound).c_str(),
                      number_or_dash(each.value).c_str(), each.cuts, each.separation_seconds,
                      name_of(each.end));
        text += line;
    }
    return text;
}

std::string summary_of(const std::vector<compared_model>& models) {
    const auto finished = std::count_if(models.begin(), models.end(),
                                        [](const auto& each) { return each.is_finished(); });
    char line[line_length];
    std::snprintf(line, sizeof line,
                  "\n%d of %d runs were finished by every variant. Geometric means "
                  "over these, of nodes + 1 and of seconds:\n",
                  static_cast<int>(finished), static_cast<int>(models.size()));
    std::string text = line;
    for (std::size_t k = 0; finished > 0 && k < variants().size(); ++k) {
        std::snprintf(line, sizeof line, "  %-18s %10.2f nodes %10.3f s\n", variants()[k].name,
                      geometric_mean(models, k, nodes_of), geometric_mean(models, k, seconds_of));
        text += line;
    }
    if (finished > 0) {
        text += comparison_with_peer(models, false) + comparison_with_peer(models, true);
    }
    return text + lost_models(models);
}

void write_csv(const std::vector<compared_model>& models, const std::string& file) {
    std::ofstream stream(file);
    stream << "model,seed,cuts_from,status,nodes,cpu_seconds,root_bound,value,cuts,"
              "separation_seconds\n";
    for (const compared_model& model : models) {
        for (std::size_t k = 0; k < model.results.size(); ++k) {
            const search_result& each = model.results[k];
            stream << stem_of(model.file) << ',' << model.seed << ",\"" << variants()[k].name
                   << "\"," << name_of(each.end) << ',' << each.nodes << ','
                   << seconds_text(each.cpu_seconds) << ','
                   << (each.root_bound ? long_text(*each.root_bound) : "") << ','
                   << (each.value ? long_text(*each.value) : "") << ',' << each.cuts << ','
                   << seconds_text(each.separation_seconds) << '\n';
        }
    }
    finish(stream, file);
}

void write_json(const std::vector<compared_model>& models, const comparison_options& options,
                const std::string& file) {
    nlohmann::ordered_json records = nlohmann::ordered_json::array();
    for (const compared_model& model : models) {
        records.push_back(record_of(model));
    }
    const nlohmann::ordered_json report = {
        {"version", ZERO_HALF_VERSION},
        {"options",
         {{"time_limit", options.seconds}, {"every", options.every}, {"plain", options.is_plain}}},
        {"models", records}};
    std::ofstream stream(file);
    stream << report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
    finish(stream, file);
}

} // namespace zero_half
