#include "tests/adapters/openfx/strict_host/strict_host.hpp"

#include <stdexcept>

namespace strict
{
namespace
{
host* the_host = nullptr;

const void* fetch(OfxPropertySetHandle properties, const char* name, int version)
{
    watch& now = the_watch();
    if (!the_host || properties != &the_host->props)
        now.complain("suites are fetched with a handle that is not the host's");
    if (current_action().empty())
        now.complain("suites are fetched before the load action");
    const std::string suite = name;
    if (!the_host || version != 1 || the_host->absent_suites.contains(suite))
        return nullptr;
    if (suite == "OfxPropertySuite")
        return &property_suite();
    if (suite == "OfxImageEffectSuite")
        return &effect_suite();
    if (suite == "OfxParameterSuite")
        return &param_suite();
    return suite == "OfxMessageSuite" ? &message_suite() : nullptr;
}

void enlist(OfxImageEffectStruct& effect)
{
    const std::lock_guard hold(the_watch().guard);
    auto& alive = the_watch().alive;
    alive.insert(&effect);
    alive.insert(&effect.props);
    alive.insert(&effect.params);
    effect.params.props = &effect.props;
}

// Arguments live as long as the action.
class arguments
{
public:
    explicit arguments(OfxPropertySetStruct* set) : set_(set)
    {
        const std::lock_guard hold(the_watch().guard);
        if (set_)
            the_watch().alive.insert(set_);
    }
    ~arguments()
    {
        const std::lock_guard hold(the_watch().guard);
        if (set_)
            the_watch().alive.erase(set_);
    }
    arguments(const arguments&) = delete;
    arguments& operator=(const arguments&) = delete;

private:
    OfxPropertySetStruct* set_;
};

OfxPropertySetStruct render_arguments(const render_call& what)
{
    OfxPropertySetStruct in;
    in.what = "the arguments";
    in.define("OfxPropTime", {what.time}, true);
    in.define("OfxImageEffectPropFieldToRender", {what.field}, true);
    in.define("OfxImageEffectPropRenderWindow", {what.window.x1, what.window.y1, what.window.x2, what.window.y2},
              true);
    in.define("OfxImageEffectPropRenderScale", {what.scale_x, what.scale_y}, true);
    in.define("OfxImageEffectPropSequentialRenderStatus", {0}, true);
    in.define("OfxImageEffectPropInteractiveRenderStatus", {0}, true);
    in.define("OfxImageEffectPropRenderQualityDraft", {0}, true);
    return in;
}

// What was defined, with values: the default each.
void copy_params(const OfxParamSetStruct& from, OfxParamSetStruct& to)
{
    for (const auto& described : from.params)
    {
        auto param = std::make_unique<OfxParamStruct>();
        param->name = described->name;
        param->type = described->type;
        param->props = described->props;
        param->props.put("OfxPropType", {std::string("OfxTypeParameterInstance")});
        if (param->type != "OfxParamTypeGroup")
            for (int i = 0; i < param->dimension(); ++i)
                param->value[static_cast<std::size_t>(i)] = param->whole()
                                                                ? param->props.integer("OfxParamPropDefault", i)
                                                                : param->props.number("OfxParamPropDefault", i);
        the_watch().alive.insert(param.get());
        the_watch().alive.insert(&param->props);
        to.params.push_back(std::move(param));
    }
}
} // namespace

binary::binary(const std::filesystem::path& file) : library_(file)
{
    count_ = reinterpret_cast<int (*)()>(library_.symbol("OfxGetNumberOfPlugins"));
    get_ = reinterpret_cast<OfxPlugin* (*)(int)>(library_.symbol("OfxGetPlugin"));
    if (!count_ || !get_)
        throw std::runtime_error("a required function is not exported");
}

int binary::plugins() const
{
    return count_();
}

OfxPlugin* binary::plugin(int nth) const
{
    return get_(nth);
}

host::host() : table_{&props, fetch}
{
    watch& now = the_watch();
    now.complaints.clear();
    now.alive.clear();
    now.fail = {};
    now.calls = 0;
    now.null_handles = false;
    now.missing.clear();
    now.messages.clear();
    now.aborts_asked = 0;
    now.abort_from = 0;
    now.wants_time = true;
    now.times_asked.clear();
    now.texts_given.clear();
    the_host = this;
    make_host(props);
    now.alive.insert(&props);
}

host::~host()
{
    the_host = nullptr;
}

OfxStatus host::act(const OfxPlugin& plugin, const char* action, const void* handle, OfxPropertySetStruct* in,
                    OfxPropertySetStruct* out)
{
    const arguments held_in(in);
    const arguments held_out(out);
    const std::string before = current_action();
    current_action() = action;
    const OfxStatus answer = plugin.mainEntry(action, handle, in, out);
    if (images_out_here() != 0)
        the_watch().complain("images are kept past the action");
    current_action() = before;
    return answer;
}

OfxStatus host::load(const OfxPlugin& plugin)
{
    plugin.setHost(&table_);
    return act(plugin, "OfxActionLoad");
}

std::unique_ptr<OfxImageEffectStruct> host::describe(const OfxPlugin& plugin, const std::string& context,
                                                     OfxStatus* answer)
{
    auto effect = std::make_unique<OfxImageEffectStruct>();
    make_effect_descriptor(effect->props);
    enlist(*effect);
    OfxPropertySetStruct in;
    in.what = "the arguments";
    in.define("OfxImageEffectPropContext", {context}, true);
    OfxStatus status = act(plugin, "OfxActionDescribe", effect.get());
    if (status == kOfxStatOK)
        status = act(plugin, "OfxImageEffectActionDescribeInContext", effect.get(), &in);
    if (answer)
        *answer = status;
    return effect;
}

std::unique_ptr<OfxImageEffectStruct> host::create(const OfxPlugin& plugin, const OfxImageEffectStruct& descriptor,
                                                   const std::string& context)
{
    auto effect = std::make_unique<OfxImageEffectStruct>();
    effect->instance = true;
    make_effect_instance(effect->props, context);
    {
        const std::lock_guard hold(the_watch().guard);
        enlist(*effect);
        copy_params(descriptor.params, effect->params);
        for (const auto& [name, described] : descriptor.clips)
        {
            auto clip = std::make_unique<OfxImageClipStruct>();
            clip->name = name;
            clip->props = described->props;
            make_clip_instance(clip->props);
            the_watch().alive.insert(clip.get());
            the_watch().alive.insert(&clip->props);
            effect->clips[name] = std::move(clip);
        }
    }
    if (act(plugin, "OfxActionCreateInstance", effect.get()) != kOfxStatOK)
        the_watch().complain("an instance cannot be made");
    return effect;
}

OfxStatus host::destroy(const OfxPlugin& plugin, std::unique_ptr<OfxImageEffectStruct> instance)
{
    const OfxStatus answer = act(plugin, "OfxActionDestroyInstance", instance.get());
    if (instance->params.edits_open != 0)
        the_watch().complain("an edit was not ended");
    forget(*instance);
    return answer;
}

void host::forget(OfxImageEffectStruct& effect)
{
    const std::lock_guard hold(the_watch().guard);
    auto& alive = the_watch().alive;
    alive.erase(&effect);
    alive.erase(&effect.props);
    alive.erase(&effect.params);
    for (const auto& param : effect.params.params)
    {
        alive.erase(param.get());
        alive.erase(&param->props);
    }
    for (const auto& [name, clip] : effect.clips)
    {
        alive.erase(clip.get());
        alive.erase(&clip->props);
    }
}

OfxStatus host::render(const OfxPlugin& plugin, OfxImageEffectStruct& instance, const render_call& what)
{
    OfxPropertySetStruct in = render_arguments(what);
    return act(plugin, "OfxImageEffectActionRender", &instance, &in);
}

OfxStatus host::is_identity(const OfxPlugin& plugin, OfxImageEffectStruct& instance, const render_call& what,
                            std::string* clip, double* time)
{
    OfxPropertySetStruct in = render_arguments(what);
    OfxPropertySetStruct out;
    out.what = "the answer";
    out.define("OfxPropName", {std::string()});
    out.define("OfxPropTime", {what.time});
    const OfxStatus answer = act(plugin, "OfxImageEffectActionIsIdentity", &instance, &in, &out);
    if (clip)
        *clip = out.text("OfxPropName");
    if (time)
        *time = out.number("OfxPropTime");
    return answer;
}

OfxStatus host::changed(const OfxPlugin& plugin, OfxImageEffectStruct& instance, const std::string& param,
                        const std::string& reason)
{
    OfxPropertySetStruct bracket;
    bracket.what = "the arguments";
    bracket.define("OfxPropChangeReason", {reason}, true);
    act(plugin, "OfxActionBeginInstanceChanged", &instance, &bracket);
    OfxPropertySetStruct in = bracket;
    in.define("OfxPropType", {std::string("OfxTypeParameter")}, true);
    in.define("OfxPropName", {param}, true);
    in.define("OfxPropTime", {0.0}, true);
    in.define("OfxImageEffectPropRenderScale", {1.0, 1.0}, true);
    const OfxStatus answer = act(plugin, "OfxActionInstanceChanged", &instance, &in);
    act(plugin, "OfxActionEndInstanceChanged", &instance, &bracket);
    return answer;
}

OfxStatus host::clip_preferences(const OfxPlugin& plugin, OfxImageEffectStruct& instance,
                                 OfxPropertySetStruct& out)
{
    out.what = "the answer";
    for (const auto& [name, clip] : instance.clips)
    {
        out.define(("OfxImageClipPropComponents_" + name).c_str(), {std::string("OfxImageComponentRGBA")});
        out.define(("OfxImageClipPropPAR_" + name).c_str(), {1.0});
    }
    out.define("OfxImageEffectPropFrameRate", {25.0});
    out.define("OfxImageClipPropFieldOrder", {std::string("OfxFieldNone")});
    out.define("OfxImageEffectPropPreMultiplication", {std::string("OfxImageOpaque")});
    out.define("OfxImageClipPropContinuousSamples", {0});
    out.define("OfxImageEffectFrameVarying", {0});
    return act(plugin, "OfxImageEffectActionGetClipPreferences", &instance, nullptr, &out);
}

std::vector<std::string> host::complaints() const
{
    std::vector<std::string> all = the_watch().complaints;
    if (images_out() != 0)
        all.push_back(std::to_string(images_out()) + " images were not released");
    return all;
}

void connect(OfxImageEffectStruct& instance, const std::string& clip,
             std::function<std::shared_ptr<host_image>(double)> image, const image_manner& manner)
{
    OfxImageClipStruct& meant = *instance.clips.at(clip);
    meant.image = std::move(image);
    meant.props.put("OfxImageClipPropConnected", {1});
    meant.props.put("OfxImageEffectPropPixelDepth", {manner.depth});
    meant.props.put("OfxImageEffectPropComponents", {manner.components});
    meant.props.put("OfxImageEffectPropPreMultiplication", {manner.premultiplication});
}
} // namespace strict
