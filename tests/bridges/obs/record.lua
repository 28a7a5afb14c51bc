-- Records for a second as soon as both filters run, and then takes one of them away.
local obs = obslua

local function frames_of(source_name, filter_name)
    local source = obs.obs_get_source_by_name(source_name)
    if source == nil then return 0 end
    local filter = obs.obs_source_get_filter_by_name(source, filter_name)
    local frames = 0
    if filter ~= nil then
        local data = obs.calldata_create()
        obs.proc_handler_call(obs.obs_source_get_proc_handler(filter), "status", data)
        frames = obs.calldata_int(data, "frames")
        obs.calldata_destroy(data)
        obs.obs_source_release(filter)
    end
    obs.obs_source_release(source)
    return frames
end

local function remove(source_name, filter_name)
    local source = obs.obs_get_source_by_name(source_name)
    local filter = obs.obs_source_get_filter_by_name(source, filter_name)
    obs.obs_source_filter_remove(source, filter)
    obs.obs_source_release(filter)
    obs.obs_source_release(source)
end

local function finish()
    if obs.obs_frontend_recording_active() then return end
    obs.remove_current_callback()
    remove("Color", "Drawn")
    obs.script_log(obs.LOG_INFO, "All is recorded.")
end

local function stop()
    obs.remove_current_callback()
    obs.obs_frontend_recording_stop()
    obs.timer_add(finish, 100)
end

local function start()
    if frames_of("Camera", "In memory") < 10 or frames_of("Color", "Drawn") < 10 then return end
    obs.remove_current_callback()
    obs.obs_frontend_recording_start()
    obs.timer_add(stop, 1500)
end

function script_load(_)
    obs.timer_add(start, 100)
end
