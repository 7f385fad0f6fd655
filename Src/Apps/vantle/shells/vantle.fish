# Completion of vantle in fish: what may follow is vantle's own answer.
function __vantle_complete
    set -l words (commandline -opc)
    set -l begun (commandline -ct | string trim --left --chars '"\'' | string replace -a '\\' '')
    for line in ($words[1] --complete $words[2..] "$begun" 2>/dev/null)
        if test "$line" = '<files>'
            __fish_complete_path "$begun"
        else
            echo $line
        end
    end
end
complete -c vantle -f -a '(__vantle_complete)'
