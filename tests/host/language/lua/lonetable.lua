return { lonetable = function(x) return "table:" .. x end }
